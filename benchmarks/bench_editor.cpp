// The editor's text: finding the statement under the caret, and showing a large file.
#include <fmt/format.h>

#include <QApplication>
#include <cstdlib>

#include "benchmarks/measure.h"
#include "editor/document_text.h"
#include "editor/sql_text_box.h"
#include "editor/statement_text.h"

namespace {

constexpr int statements = 100'000;
constexpr std::size_t text_bytes = 10'000'000;
constexpr int rounds = 9;

std::string large_script() {
  std::string text;
  text.reserve(text_bytes + 200);
  for (int i = 0; i < statements; ++i) {
    const std::string statement = fmt::format("select CUSTNO, NAME, CITY\r\nfrom CUSTOMER where CUSTNO = {} ", i);
    text += statement;
    text.append(text_bytes / statements - statement.size() - 3, 'x');
    text += ";\r\n";
  }
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const std::string script = large_script();
  print_table_head();

  std::size_t found = 0;
  const auto finding = median_seconds({[&] { found += get_sql_str(script, script.size() - 4)->size(); }}, rounds);
  print_row(
      fmt::format("get_sql_str, caret at the end of {} MB and {} statements", script.size() / 1'000'000, statements),
      fmt::format("{:.2f} ms", finding[0] * 1e3), "< 20 ms");

  sql_text_box box;
  box.resize(800, 600);
  box.show();
  QApplication::processEvents();
  const auto showing = median_seconds({[&] {
                                        box.set_document(document_from_file(script));
                                        box.repaint();
                                        QApplication::processEvents();
                                      }},
                                      rounds);
  print_row("the text box shows that text", fmt::format("{:.3f} s", showing[0]), "< 0.5 s");

  box.set_caret(script.size() - 4);
  const auto under_caret = median_seconds({[&] { found += get_sql_str(box.bytes(), box.caret())->size(); }}, rounds);
  print_row("the statement under the caret, out of the text box", fmt::format("{:.2f} ms", under_caret[0] * 1e3),
            "< 20 ms");
  return found == 0 ? 1 : 0;
}
