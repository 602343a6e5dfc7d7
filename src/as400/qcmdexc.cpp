#include "as400/qcmdexc.h"

#include <fmt/format.h>

#include "base/text.h"

std::string qcmdexc_call(std::string_view command, std::string_view separator) {
  return fmt::format("call qsys{}qcmdexc('{}',{:010}.00000)", separator, command, count_characters(command));
}
