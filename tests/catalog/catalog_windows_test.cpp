// The columns helper and the table information window, on real databases and on a driver that fails.
#include <QAbstractItemView>
#include <QClipboard>
#include <QComboBox>
#include <QCompleter>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <algorithm>

#include "catalog/frmtableinfo.h"
#include "catalog/outview.h"
#include "odbc/catalog_tables.h"
#include "support/desktop.h"
#include "widgets/flexgrid.h"
#include "widgets/name_box.h"

using texts = std::vector<std::string>;

namespace {

scripted::answer rows_of(const catalog_operation& operation, std::vector<std::vector<scripted::cell>> rows) {
  std::vector<scripted::column> columns;
  for (const catalog_column& each : operation.columns) {
    const bool text = each.cell.ctype == SQL_C_CHAR;
    columns.push_back({std::string(each.name), static_cast<SQLSMALLINT>(text ? SQL_VARCHAR : SQL_INTEGER), 300});
  }
  return {.columns = std::move(columns), .rows = std::move(rows)};
}

std::vector<scripted::cell> column_row(const char* library, const char* table, const char* name) {
  return {"Q", library, table, name, 4, "INTEGER", 10, 4, 0, 10, 1, nullptr};
}

// Rows of a grid, its titles included, cells joined by '|'.
texts rows_of(const flexgrid* grid) {
  texts rows;
  for (int row = 0; row < grid->Rows(); ++row) {
    QStringList cells;
    for (int column = 0; column < grid->Cols(); ++column) cells += grid->text(row, column);
    rows.push_back(plain(cells.join('|')));
  }
  return rows;
}
bool has_row(const flexgrid* grid, const std::string& wanted) {
  const texts rows = rows_of(grid);
  return std::find(rows.begin(), rows.end(), wanted) != rows.end();
}

// A session with the columns helper open. The engine's tables are made first.
class helper {
 public:
  explicit helper(const engine& which, const texts& statements = {}) : at(which) {
    odbcstmt statement;
    EXPECT_TRUE(statement.Make(session::g_con));
    for (const std::string& each : statements) EXPECT_TRUE(statement.CEX(each)) << statement.ErrData().text;
    statement.Kill();
    if (which.name == "scripted") {
      scripted::control().catalog_answer("SQLTables",
                                         rows_of(catalog_operations::tables, {{"Q", "L", "A_B", "TABLE", nullptr},
                                                                              {"Q", "L", "AXB", "TABLE", nullptr},
                                                                              {"Q", "M%", "T", "VIEW", "a view"}}));
      scripted::control().catalog_answer(
          "SQLColumns",
          rows_of(catalog_operations::columns,
                  {column_row("L", "AXB", "WRONG"), column_row("L", "A_B", "ID"), column_row("L", "A_B", "NAME\tX")}));
    }
    scripted::control().clear_log();
    show_columns_helper(*at.frame);
    window = at.frame->findChild<outview*>();
  }
  [[nodiscard]] name_box* box(const char* name) const { return window->findChild<name_box*>(name); }
  [[nodiscard]] flexgrid* grid() const { return window->findChild<flexgrid*>("GRID"); }
  [[nodiscard]] QListWidget* list() const { return window->findChild<QListWidget*>("List1"); }
  [[nodiscard]] frmTableInfo* information() const { return at.frame->findChild<frmTableInfo*>(); }
  void press(const char* button) const { window->findChild<QPushButton*>(button)->click(); }
  void option(int index) const {
    window->findChild<QRadioButton*>("Option1_" + QString::number(index))->setChecked(true);
  }
  // Types a name and presses Enter.
  void choose(const char* box_name, const QString& name) const {
    box(box_name)->setEditText(name);
    QTest::keyClick(box(box_name), Qt::Key_Return);
  }
  // Double-clicks a column.
  void collect(int row) const {
    grid()->set_current(row, 3);
    emit grid()->doubleClicked(grid()->currentIndex());
  }
  [[nodiscard]] texts collected() const {
    texts names;
    for (int row = 0; row < list()->count(); ++row) names.push_back(plain(list()->item(row)->text()));
    return names;
  }

  desktop at;
  QPointer<outview> window;
};

std::size_t catalog_calls() {
  std::size_t count = 0;
  for (const scripted::call& each : scripted::control().log()) {
    for (const char* function : {"SQLTables", "SQLColumns", "SQLPrimaryKeys", "SQLForeignKeys", "SQLStatistics"})
      count += each.function == function ? 1 : 0;
  }
  return count;
}

std::string arguments(const std::string& function, std::size_t number) {
  std::string joined;
  const auto calls = scripted::control().calls(function);
  for (const std::string& each : calls.at(number).args) joined += each + '|';
  return joined;
}

TEST(outview, opens_with_three_catalog_calls_and_shows_a_table_with_one) {
  const helper on(scripted_engine());
  EXPECT_EQ(catalog_calls(), 3U);
  EXPECT_EQ(arguments("SQLTables", 0), "%|||<null>|");
  EXPECT_EQ(arguments("SQLTables", 1), "|%||<null>|");
  EXPECT_EQ(arguments("SQLTables", 2), "Q|L|%|<null>|");
  EXPECT_EQ(on.box("quals")->count(), 1);
  EXPECT_EQ(on.box("Libs")->count(), 2);
  EXPECT_EQ(plain(on.box("tables")->currentText()), "") << "no table is chosen yet";
  EXPECT_FALSE(on.grid()->isVisible());

  on.choose("tables", "A_B");
  EXPECT_EQ(catalog_calls(), 4U);
  EXPECT_EQ(arguments("SQLColumns", 0), "Q|L|A_B|<null>|");
  EXPECT_TRUE(on.grid()->isVisible() && on.grid()->isEnabled());
  EXPECT_EQ(rows_of(on.grid()), (texts{"Ordn|Column Name|Type|Len|Scle|Prec|Nul?|Remarks", "1|ID|INTEGER|4|0|10|1|",
                                       "2|NAME\tX|INTEGER|4|0|10|1|"}));
  EXPECT_EQ(on.grid()->FixedRows(), 1);
  EXPECT_EQ(on.grid()->column_width(1), 3375);
  EXPECT_EQ(on.grid()->column_width(7), 6015);
  EXPECT_EQ(on.grid()->column_width(3), flexgrid::default_column_width);

  on.choose("tables", "GONE");
  EXPECT_FALSE(on.grid()->isVisible()) << "what the driver tells of other tables is not shown";
  on.choose("Libs", "M%");
  EXPECT_EQ(on.box("tables")->count(), 0) << "until they are loaded again";
  on.press("Command5");
  EXPECT_EQ(arguments("SQLTables", 3), "Q|M_|%|<null>|") << "the library's own percent sign";
  EXPECT_EQ(on.box("tables")->count(), 1);
  EXPECT_EQ(scripted::control().open_statements(), 2U);
  on.window->parentWidget()->close();
  EXPECT_EQ(scripted::control().open_statements(), 1U);
}

TEST(outview, collects_qualified_names_and_takes_them_over) {
  helper on(scripted_engine());
  on.press("Command3");
  on.choose("tables", "A_B");
  QGuiApplication::clipboard()->setText("before");
  on.press("Command3");
  EXPECT_EQ(plain(QGuiApplication::clipboard()->text()), "before");
  session::qualifier_sep = "/";
  for (const int index : {3, 2, 1, 0}) {
    on.option(index);
    on.collect(1);
  }
  EXPECT_EQ(on.collected(), (texts{"ID", "A_B/ID", "L/A_B/ID", "Q/L/A_B/ID"}));
  EXPECT_EQ(on.grid()->column(), 1);
  on.list()->setCurrentRow(2);
  QTest::keyClick(on.list(), Qt::Key_Delete);
  on.press("Command3");
  EXPECT_EQ(plain(QGuiApplication::clipboard()->text()), "ID, A_B/ID, Q/L/A_B/ID");
  EXPECT_EQ(on.at.ui.take_texts(), texts{});

  on.press("insert_into_document");
  EXPECT_EQ(on.at.ui.take_texts(), texts{"There is no document to insert into. Open one first."});
  const form1* document = on.at.new_document();
  put_text(document, "select  from t");
  text_of(document)->select_bytes(7, 5);
  action_of(document, "Columns_listing")->trigger();
  settle();
  EXPECT_EQ(on.at.frame->findChildren<outview*>().size(), 1);
  on.press("insert_into_document");
  EXPECT_EQ(text_of(document)->bytes(), "select ID, A_B/ID, Q/L/A_B/ID from t") << "what was selected stays";
  on.press("Command4");
  EXPECT_EQ(on.list()->count(), 0);
}

TEST(outview, tells_the_user_what_is_missing) {
  helper on(scripted_engine());
  on.press("Command2");
  EXPECT_EQ(on.at.ui.messages.at(0).title, "User Error");
  EXPECT_EQ(on.at.ui.take_texts(), texts{"You must select a table first!"});
  on.choose("tables", "A_B");
  emit on.grid()->horizontalHeader()->sectionDoubleClicked(1);
  EXPECT_EQ(on.at.ui.take_texts(), texts{"Must point at a data row!"});
  EXPECT_EQ(on.list()->count(), 0);
  EXPECT_EQ(on.information(), nullptr);
}

TEST(outview, a_failure_is_told_once_and_the_window_goes_on) {
  helper on(scripted_engine());
  const scripted::failure gone{SQL_ERROR, "08S01", -9, "gone"};
  for (const char* function : {"SQLColumns", "SQLBindCol", "SQLFetch"}) {
    on.choose("tables", "A_B");
    ASSERT_TRUE(on.grid()->isVisible());
    // The driver manager may fetch through either.
    scripted::control().fail(function, 2, gone);
    if (std::string(function) == "SQLColumns") {
      scripted::control().clear_faults();
      scripted::control().fail(function, 1, gone);
    }
    if (std::string(function) == "SQLFetch") scripted::control().fail("SQLExtendedFetch", 2, gone);
    on.press("Command1");
    scripted::control().clear_faults();
    EXPECT_EQ(on.at.ui.take_texts(), texts{"SQL error. Code = -9. State = 08S01. Message = gone."}) << function;
    EXPECT_FALSE(on.grid()->isVisible());
    EXPECT_EQ(plain(on.box("tables")->currentText()), "A_B");
  }
  // The message of a failing load is answered by closing the frame.
  on.at.ui.while_open = [&](const message&) {
    on.at.frame->close();
    settle();
  };
  scripted::control().fail("SQLTables", 1, gone);
  on.press("Command5");
  EXPECT_TRUE(on.window.isNull());
}

TEST(frm_table_info, one_window_asks_once_for_each_table_and_tells_a_missing_function_once) {
  using namespace catalog_operations;
  helper on(scripted_engine());
  scripted::control().catalog_answer("SQLPrimaryKeys", rows_of(primary_keys, {{"Q", "L", "A_B", "ID", 1, "PK"}}));
  scripted::control().catalog_answer(
      "SQLStatistics", rows_of(statistics, {{"Q", "L", "A_B", nullptr, nullptr, nullptr, 0, nullptr, nullptr},
                                            {"Q", "L", "AXB", 0, "L", "OTHER", 3, 1, "Z", "A"},
                                            {"Q", "L", "A_B", 1, "L", "IX", 3, 1, "ID", "D"}}));
  on.choose("tables", "A_B");
  scripted::control().clear_log();
  on.press("Command2");
  EXPECT_EQ(catalog_calls(), 4U);
  EXPECT_EQ(on.at.ui.take_texts().size(), 1U) << "SQLForeignKeys is asked twice";
  frmTableInfo* shown = on.information();
  EXPECT_EQ(plain(shown->windowTitle()), "Table Information: Q.L.A_B");
  EXPECT_EQ(rows_of(shown->findChild<flexgrid*>("Grid1")),
            (texts{"Key Seq|Column Name|Primary Key Identifier", "1|ID|PK"}));
  EXPECT_EQ(rows_of(shown->findChild<flexgrid*>("Grid2")),
            texts{"Type|Key Seq|My Field|Table Name|Foreign Name|Foreign Key Identifier"});
  EXPECT_EQ(rows_of(shown->findChild<flexgrid*>("Grid3")),
            (texts{"Index Qualifier|Index Name|Uniq?|Seq|Column Name|Order", "|||||", "L|IX|N|1|ID|D"}));

  show_columns_helper(*on.at.frame);
  settle();
  on.press("Command2");
  settle();
  EXPECT_EQ(catalog_calls(), 4U) << "activated again";
  on.choose("tables", "AXB");
  on.press("Command2");
  EXPECT_EQ(on.at.frame->findChildren<frmTableInfo*>().size(), 1);
  EXPECT_EQ(rows_of(shown->findChild<flexgrid*>("Grid3")).at(1), "L|OTHER|Y|1|Z|A");
  EXPECT_EQ(rows_of(shown->findChild<flexgrid*>("Grid1")).size(), 1U);
  EXPECT_EQ(shown->findChild<flexgrid*>("Grid1")->FixedRows(), 0);
  shown->findChild<QPushButton*>("Command1")->click();
  settle();
  EXPECT_EQ(on.information(), nullptr);
}

TEST(name_box_test, offers_any_case_but_changes_no_typed_name) {
  name_box box;
  int chosen = 0;
  QObject::connect(&box, &name_box::chosen, [&] { ++chosen; });
  box.set_names({"CUSTOMER", "customer", "Order"});
  box.show();
  box.lineEdit()->setFocus();
  box.setEditText("customer");
  QTest::keyClick(&box, Qt::Key_Return);
  EXPECT_EQ(plain(box.currentText()), "customer");
  EXPECT_EQ(chosen, 1);
  box.lineEdit()->clear();
  QTest::keyClicks(box.lineEdit(), "DER");
  ASSERT_TRUE(box.completer()->popup()->isVisible());
  QTest::keyClick(box.completer()->popup(), Qt::Key_Down);
  QTest::keyClick(box.completer()->popup(), Qt::Key_Return);
  EXPECT_EQ(plain(box.currentText()), "Order");
  EXPECT_EQ(chosen, 2);
  EXPECT_TRUE(box.lists("Order") && !box.lists("order"));
}

const texts tables_of_engines{
    "create table \"Cat parent\" (a integer not null, b varchar(30) not null, primary key (a))",
    "create table cat_child (id integer not null, p integer references \"Cat parent\" (a), primary key (id))",
    "create table \"cat%Größe\" (x integer)", "create unique index cat_parent_b on \"Cat parent\" (b)",
    "create index cat_child_p on cat_child (p)"};

class catalog_windows : public testing::TestWithParam<engine> {};

TEST_P(catalog_windows, show_tables_columns_and_keys_of_a_real_database) {
  helper on(GetParam(), tables_of_engines);
  const bool server = GetParam().name == "postgres";
  EXPECT_EQ(on.box("Libs")->isEnabled(), server);
  if (server) {
    on.choose("Libs", "public");
    on.press("Command5");
  }
  ASSERT_TRUE(on.box("tables")->lists("cat%Größe"));
  on.choose("tables", "cat%Größe");
  EXPECT_EQ(on.grid()->Rows(), 2);
  EXPECT_EQ(plain(on.grid()->text(1, 1)), "x");
  on.choose("tables", "Cat parent");
  on.press("Command2");
  const auto grid = [&](const char* name) { return on.information()->findChild<flexgrid*>(name); };
  const auto cell = [&](const char* name, int row, int column) { return plain(grid(name)->text(row, column)); };
  EXPECT_EQ(cell("Grid1", 1, 1), "a");
  EXPECT_EQ(cell("Grid2", 1, 0) + cell("Grid2", 1, 2) + cell("Grid2", 1, 3) + cell("Grid2", 1, 4), "INacat_childp");
  EXPECT_TRUE(has_row(grid("Grid3"), (server ? "public" : "") + std::string("|cat_parent_b|Y|1|b|A")));
  on.choose("tables", "cat_child");
  on.press("Command2");
  EXPECT_EQ(cell("Grid2", 1, 0) + cell("Grid2", 1, 2) + cell("Grid2", 1, 3) + cell("Grid2", 1, 4), "OUTpCat parenta");
  EXPECT_TRUE(has_row(grid("Grid3"), (server ? "public" : "") + std::string("|cat_child_p|N|1|p|A")));
  on.choose("tables", "cat%Größe");
  on.press("Command2");
  for (const char* name : {"Grid1", "Grid2", "Grid3"}) EXPECT_EQ(grid(name)->Rows(), 1) << name;
  EXPECT_EQ(on.at.ui.take_texts(), texts{});
}

INSTANTIATE_TEST_SUITE_P(engines, catalog_windows, testing::Values(sqlite(), postgres()),
                         [](const auto& each) { return each.param.name; });

}  // namespace
