#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/user_interface.h"
#include "editor/statement_pipeline.h"

// Messages on standard error, one line each with its title; questions are answered ok.
class console_interface final : public user_interface {
 public:
  message_answer show_message(const message& shown) override;
  [[nodiscard]] pointer_shape pointer() const override { return pointer_shape::standard; }
  void set_pointer(pointer_shape) override {}
};

// The pipeline's ends on a console: figures come from its result, so the panels go nowhere. Markers take the values
// given on the command line, one after the other.
class console_host final : public pipeline_host, public pipeline_status {
 public:
  explicit console_host(std::vector<std::string> parameters = {}) : parameters_(std::move(parameters)) {}
  // Checks the next values as the binding dialog does and binds them. Values that are too few, refused or of a marker
  // that takes none are told and answer false; those of this statement count as used.
  bool enter_parameters(const std::shared_ptr<odbcstmt>& statement, bool is_call) override;
  void show_returned_parameters(const std::shared_ptr<odbcstmt>& statement) override;
  // What the last call returned, by position; nothing when no call with markers was executed since this was last asked.
  std::optional<std::vector<value>> take_returned() { return std::exchange(returned_, std::nullopt); }
  // How many of the values no marker has taken.
  [[nodiscard]] std::size_t unused() const { return parameters_.size() - next_; }
  [[nodiscard]] bool data_window_wanted() const override { return false; }
  void open_data_window(const std::string&, const std::shared_ptr<odbcstmt>&, std::int64_t) override {}
  void set_panel(panel, const std::string&) override {}
  void refresh() override {}

 private:
  std::vector<std::string> parameters_;
  std::size_t next_ = 0;
  std::optional<std::vector<value>> returned_;
};

// The password from SORVANE_PWD, else asked for on the terminal without echo; "" where there is no terminal.
std::string console_password();
