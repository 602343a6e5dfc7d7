// The editor's text: finding the statement under the caret, and showing a large file.
#include <fmt/format.h>

#include <QApplication>
#include <QKeyEvent>
#include <cstdlib>

#include "benchmarks/measure.h"
#include "editor/document_text.h"
#include "editor/sql_text_box.h"
#include "editor/statement_text.h"

namespace {

constexpr int statements = 100'000;
constexpr std::size_t text_bytes = 10'000'000;
constexpr int rounds = 9;
constexpr int keys = 60;

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

// Median milliseconds of a key typed at the end of a text of `size` bytes, until it is on the screen.
double key_at_the_end_of(std::size_t size, const std::string& script) {
  sql_text_box box;
  box.resize(800, 600);
  box.show();
  box.set_document(document_from_file(script.substr(0, size)));
  box.set_caret(size);
  QApplication::processEvents();
  int shown = 0;
  QObject::connect(&box, &sql_text_box::edited, [&shown] { ++shown; });
  std::vector<double> samples;
  for (int i = 0; i < keys; ++i) {
    samples.push_back(seconds_of([&] {
      QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, "a");
      QApplication::sendEvent(&box, &press);
      QApplication::processEvents();
    }));
  }
  if (shown < keys || box.size() != size + keys) std::exit(1);
  return median(std::move(samples)) * 1e3;
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

  box.set_document(document_from_file(script + "needle;\r\n"));
  bool hit = true;
  const auto searching = median_seconds({[&] {
                                          box.set_caret(0);
                                          hit = hit && box.find_next("NEEDLE");
                                        }},
                                        rounds);
  print_row("find of a word at the end of 10 MB", fmt::format("{:.1f} ms", searching[0] * 1e3), "< 100 ms");
  box.set_document(document_from_file(script + "größe;\r\n"));
  const auto searching_umlauts = median_seconds({[&] {
                                                  box.set_caret(0);
                                                  hit = hit && box.find_next("GRÖSSE") != box.find_next("GRÖße");
                                                }},
                                                rounds);
  print_row("find of a word with an umlaut there", fmt::format("{:.1f} ms", searching_umlauts[0] * 1e3), "< 100 ms");

  print_row("a key at the end of 100 KB, highlighted and shown",
            fmt::format("{:.2f} ms", key_at_the_end_of(100'000, script)), "< 4 ms");
  print_row("a key at the end of 1 MB, highlighted and shown",
            fmt::format("{:.2f} ms", key_at_the_end_of(1'000'000, script)), "< 12 ms");
  return found == 0 || !hit ? 1 : 0;
}
