#include "odbc/layer_error.h"

#include <new>

void raise_error(std::int32_t number) {
  if (number == 0) number = 65001;
  throw layer_error(number < 0 ? number : object_error_base + number);
}

std::int32_t number_of_current_exception() {
  try {
    throw;
  } catch (const layer_error& error) {
    return error.number();
  } catch (const std::bad_alloc&) {
    return exhausted_memory;
  } catch (...) {
    return internal_error;
  }
}
