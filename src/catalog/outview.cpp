#include "catalog/outview.h"

#include <QClipboard>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPointer>
#include <QStyle>

#include "base/user_interface.h"
#include "catalog/frmtableinfo.h"
#include "catalog/grid_rows.h"
#include "platform/mdi_child.h"
#include "shell/session.h"
#include "ui_outview.h"
#include "widgets/twips.h"

namespace {

constexpr int width_in_twips = 10800;
constexpr int height_in_twips = 8400;

constexpr int name_column = 1;
struct column_width {
  int column;
  int twips;
};
constexpr column_width widths[] = {{name_column, 3375}, {2, 1110}, {7, 6015}};

constexpr int tables_name = 3;

const char* choose_hint = "Choose a table to see its columns.";
const char* nothing_hint = "The catalog tells of no columns of this table.";

// Fills a box and selects its first entry; without entries it is disabled.
void fill(name_box& box, const value& names) {
  QStringList entries;
  if (names.is(value::kind::list)) {
    for (const value& each : names.list().items) entries += QString::fromStdString(to_text(each));
  }
  box.set_names(entries);
  box.setEnabled(!entries.isEmpty());
  if (!entries.isEmpty()) box.setCurrentIndex(0);
}

// A disabled box gives the empty text.
std::string text_of(const name_box& box) { return box.isEnabled() ? box.currentText().toStdString() : std::string(); }

}  // namespace

outview::outview(mdi_host& host) : ui_(std::make_unique<Ui::outview>()), host_(host) {
  ui_->setupUi(this);
  resize(twips_to_pixels(width_in_twips, *this), twips_to_pixels(height_in_twips, *this));
  ui_->Command5->setIcon(style()->standardIcon(QStyle::SP_BrowserReload));
  ui_->GRID->installEventFilter(this);
  ui_->List1->installEventFilter(this);
  setFocusProxy(ui_->tables);
  grid_clear(choose_hint);

  connect(ui_->Command1, &QPushButton::clicked, this, &outview::Command1_Click);
  connect(ui_->Command2, &QPushButton::clicked, this, &outview::Command2_Click);
  connect(ui_->Command3, &QPushButton::clicked, this, &outview::Command3_Click);
  connect(ui_->Command4, &QPushButton::clicked, this, &outview::Command4_Click);
  connect(ui_->Command5, &QPushButton::clicked, this, &outview::Command5_Click);
  connect(ui_->insert_into_document, &QPushButton::clicked, this, &outview::insert_into_document_Click);
  connect(ui_->Libs, &name_box::chosen, this, &outview::Libs_Click);
  connect(ui_->tables, &name_box::chosen, this, &outview::tables_Click);
  connect(ui_->GRID, &QTableView::doubleClicked, this, &outview::GRID_DblClick);
  connect(ui_->GRID->horizontalHeader(), &QHeaderView::sectionDoubleClicked, this, &outview::title_row_DblClick);
  connect(ui_->List1, &QListWidget::itemDoubleClicked, this, &outview::List1_DblClick);
}

outview::~outview() = default;

void outview::Form_Load() {
  if (!statement_.Make(session::g_con)) {
    session::g_con.Errd();
    return;
  }
  catalog_reader catalog(statement_);
  {
    const busy_section busy;
    fill(*ui_->quals, catalog.qualifiers());
    fill(*ui_->Libs, catalog.libraries());
    // A part that the driver does not have qualifies no name.
    ui_->Option1_0->setEnabled(ui_->quals->isEnabled());
    ui_->Option1_1->setEnabled(ui_->Libs->isEnabled());
    load_tables(catalog);
  }
  catalog.tell_failures();
}

void outview::Form_Unload() {
  unloaded_ = true;
  statement_.Kill();
}

void outview::closeEvent(QCloseEvent* event) {
  Form_Unload();
  event->accept();
}

// The keys that stand for a double-click.
bool outview::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<const QKeyEvent*>(event)->key();
    if (watched == ui_->GRID && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
      GRID_DblClick();
      return true;
    }
    if (watched == ui_->List1 && key == Qt::Key_Delete) {
      List1_DblClick();
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

table_key outview::chosen_table() const {
  return {.qualifier = text_of(*ui_->quals),
          .library = text_of(*ui_->Libs),
          .table = text_of(*ui_->tables),
          .library_is_pattern = !ui_->Libs->lists(ui_->Libs->currentText())};
}

void outview::load_tables(catalog_reader& catalog) {
  QStringList names;
  catalog.tables(chosen_table(), "%", [&](const matrix& found, std::size_t row) {
    names += QString::fromStdString(to_text(found(tables_name, row)));
  });
  ui_->tables->set_names(names);
}

void outview::Command5_Click() {
  catalog_reader catalog(statement_);
  {
    const busy_section busy;
    load_tables(catalog);
  }
  catalog.tell_failures();
}

void outview::Libs_Click() { ui_->tables->set_names({}); }
void outview::tables_Click() { grid_populate(); }
void outview::Command1_Click() { grid_populate(); }

void outview::grid_clear(const QString& hint) {
  flexgrid& grid = *ui_->GRID;
  const redraw_off still(grid);
  grid.SetFixedCols(0);
  grid.SetFixedRows(0);
  grid.SetRows(1);
  grid.SetCols(static_cast<int>(columns_shown.size()));
  grid.set_current(0, 0);
  put_titles(grid, columns_shown);
  for (const column_width& each : widths) grid.set_column_width(each.column, each.twips);
  grid.setEnabled(false);
  ui_->hint->setText(hint);
  ui_->columns_or_hint->setCurrentWidget(ui_->hint_page);
}

void outview::grid_populate() {
  const table_key table = chosen_table();
  grid_clear(table.table.empty() ? choose_hint : nothing_hint);
  if (table.table.empty()) return;
  catalog_reader catalog(statement_);
  {
    const busy_section busy;
    flexgrid& grid = *ui_->GRID;
    const redraw_off still(grid);
    add_rows(grid, catalog.columns(table));
    if (grid.Rows() >= 2) {
      grid.SetFixedRows(1);
      grid.SetFixedCols(0);
      grid.setEnabled(true);
      ui_->columns_or_hint->setCurrentWidget(&grid);
    }
  }
  catalog.tell_failures();
}

void outview::GRID_DblClick() {
  flexgrid& grid = *ui_->GRID;
  const int row = grid.row();
  if (row == 0) return title_row_DblClick();
  grid.set_current(row, name_column);
  QString name = grid.text(row, name_column);
  const QString separator = QString::fromStdString(session::qualifier_sep);
  if (!ui_->Option1_3->isChecked()) name.prepend(ui_->tables->currentText() + separator);
  if (ui_->Option1_0->isChecked() || ui_->Option1_1->isChecked()) name.prepend(ui_->Libs->currentText() + separator);
  if (ui_->Option1_0->isChecked()) name.prepend(ui_->quals->currentText() + separator);
  ui_->List1->addItem(name);
  ui_->List1->setCurrentRow(ui_->List1->count() - 1);
}

void outview::title_row_DblClick() { show_user_error("Must point at a data row!"); }

void outview::List1_DblClick() { delete ui_->List1->takeItem(ui_->List1->currentRow()); }

void outview::Command2_Click() {
  const table_key table = chosen_table();
  if (table.table.empty()) return show_user_error("You must select a table first!");
  describe_table(host_, table);
}

QString outview::collected() const {
  QStringList names;
  for (int row = 0; row < ui_->List1->count(); ++row) names += ui_->List1->item(row)->text();
  return names.join(", ");
}

void outview::Command3_Click() {
  if (ui_->List1->count() == 0) return;
  QClipboard* clipboard = QGuiApplication::clipboard();
  clipboard->clear();
  clipboard->setText(collected());
}

void outview::insert_into_document_Click() {
  if (ui_->List1->count() == 0) return;
  const QString refused = host_.insert_into_document(collected());
  if (!refused.isEmpty()) show_user_error(refused.toStdString());
}

void outview::Command4_Click() { ui_->List1->clear(); }

void show_columns_helper(mdi_host& host) {
  static QPointer<outview> open;
  if (!open.isNull() && !open->unloaded()) {
    activate_mdi_child(*open);
    return;
  }
  open = new outview(host);
  host.show_child(open);
  open->Form_Load();
}
