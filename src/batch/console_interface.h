#pragma once

#include <memory>

#include "base/user_interface.h"
#include "editor/statement_pipeline.h"

// Messages on standard error, one line each with its title; questions are answered ok.
class console_interface final : public user_interface {
 public:
  message_answer show_message(const message& shown) override;
  [[nodiscard]] pointer_shape pointer() const override { return pointer_shape::standard; }
  void set_pointer(pointer_shape) override {}
};

// The pipeline's ends on a console: figures come from its result, so the panels go nowhere.
class console_host final : public pipeline_host, public pipeline_status {
 public:
  bool enter_parameters(const std::shared_ptr<odbcstmt>& statement, bool is_call) override;
  void show_returned_parameters(const std::shared_ptr<odbcstmt>&) override {}
  [[nodiscard]] bool data_window_wanted() const override { return false; }
  void open_data_window(const std::string&, const std::shared_ptr<odbcstmt>&, std::int64_t) override {}
  void set_panel(panel, const std::string&) override {}
  void refresh() override {}
};

// The password from SORVANE_PWD, else asked for on the terminal without echo; "" where there is no terminal.
std::string console_password();
