#pragma once

#include "datawindow/datawindow.h"
#include "datawindow/dwf.h"
#include "support/desktop.h"
#include "support/printing.h"
#include "widgets/flexgrid.h"

using texts = std::vector<std::string>;

// A statement's result in a data window of a frame, handed over as an editor document does it.
class shown_result {
 public:
  explicit shown_result(const engine& which) : at(which) { EXPECT_TRUE(statement->Make(session::g_con)); }

  // The number of rows of the first block, or -1 with the driver's message.
  std::int64_t show(const std::string& text, int rowset) {
    if (!statement->Prep(text, rowset) || !statement->Execute()) {
      ADD_FAILURE() << diagnostic_text(statement->ErrData());
      return -1;
    }
    std::int64_t rows = 0;
    if (rowset > 1) {
      statement->ExtFetchNext(rows);
    } else {
      rows = statement->Fetch() ? 1 : 0;
    }
    const std::shared_ptr<DataWindow> made = DataWindow::open(*at.frame);
    made->SetStatement(text, statement);
    made->SetHeaders();
    made->FetchFirst(rows);
    window = made;
    form = made->form();
    settle();
    return rows;
  }
  std::int64_t show(const scripted::answer& answer, int rowset) {
    scripted::control().answer_to("q", answer);
    return show("q", rowset);
  }

  [[nodiscard]] std::shared_ptr<DataWindow> object() const { return window.lock(); }
  [[nodiscard]] flexgrid& grid() const { return form->grid(); }
  [[nodiscard]] std::string cell(int row, int column) const { return plain(grid().text(row, column)); }
  [[nodiscard]] texts row(int number) const {
    texts cells;
    for (int column = 0; column < grid().Cols(); ++column) cells.push_back(cell(number, column));
    return cells;
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
    QTest::keyClick(&grid(), key, modifiers);
    settle();
  }
  void choose(const char* entry) const { action_of(form, entry)->trigger(); }
  static std::size_t fetches() { return scripted::control().count("SQLExtendedFetch"); }

  desktop at;
  std::shared_ptr<odbcstmt> statement = std::make_shared<odbcstmt>();
  std::weak_ptr<DataWindow> window;
  QPointer<dwf> form;
};

inline scripted::answer counted(SQLULEN rows) {
  return {.columns = {{"N", SQL_INTEGER, 10}, {"WORD", SQL_VARCHAR, 20}},
          .generated = scripted::generated_rows{rows, [](SQLULEN row, std::size_t column) {
                                                  return column == 0
                                                             ? scripted::cell(static_cast<std::int32_t>(row + 1))
                                                             : scripted::cell("row " + std::to_string(row + 1));
                                                }}};
}
