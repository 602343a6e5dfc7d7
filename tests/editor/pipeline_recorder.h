#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "editor/statement_pipeline.h"

// Both ends of a pipeline: keeps what the panels show at each refresh, and answers for the windows of the parameters.
class pipeline_recorder final : public pipeline_host, public pipeline_status {
 public:
  void set_panel(panel which, const std::string& text) override { panels[static_cast<std::size_t>(which) - 1] = text; }
  void refresh() override { shown.push_back(line()); }
  bool enter_parameters(const std::shared_ptr<odbcstmt>& statement, bool is_call) override {
    entered += is_call ? "call" : "markers";
    return !on_enter || on_enter(*statement);
  }
  void show_returned_parameters(const std::shared_ptr<odbcstmt>& statement) override {
    ++returned;
    for (int marker = 1; marker <= statement->Nparms(); ++marker) returned_values.push_back(statement->GetParm(marker));
  }
  [[nodiscard]] bool data_window_wanted() const override { return data_window; }
  void open_data_window(const std::string& text, const std::shared_ptr<odbcstmt>& statement,
                        std::int64_t rows) override {
    windows.push_back(text + '|' + std::to_string(rows) + '|' + to_text(statement->Getc(1, 0)));
  }
  // The seven texts, joined by '|'.
  [[nodiscard]] std::string line() const {
    std::string all = panels[0];
    for (std::size_t i = 1; i < panels.size(); ++i) all += '|' + panels[i];
    return all;
  }

  std::array<std::string, panel_count> panels{"Status:", "0.00000", "0.00000", "0.00000", "0.00000", "0", "0.00000"};
  std::vector<std::string> shown;
  std::string entered;
  bool data_window = false;
  std::vector<std::string> windows;  // text, rows, first cell
  std::function<bool(odbcstmt&)> on_enter;
  int returned = 0;
  std::vector<value> returned_values;
};
