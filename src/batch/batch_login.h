#pragma once

#include <string>

#include "batch/batch_options.h"

// Logs in with the options' settings instead of stored ones, and out again.
class batch_login {
 public:
  batch_login(const batch_options& options, const std::string& password);
  ~batch_login();
  batch_login(const batch_login&) = delete;
  batch_login& operator=(const batch_login&) = delete;
  [[nodiscard]] bool ok() const { return ok_; }

 private:
  bool ok_ = false;
};
