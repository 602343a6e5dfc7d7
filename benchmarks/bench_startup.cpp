// From the start of a process to its first window on an X display: the program's login beside an empty window.
#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdlib>
#include <string>

#include "benchmarks/measure.h"
#include "benchmarks/scratch_database.h"

namespace {

constexpr int rounds = 15;

// A display of its own, on a number that the server picks.
class virtual_display {
 public:
  virtual_display() {
    int ends[2];
    if (pipe(ends) != 0) give_up("No pipe can be made.");
    server_ = fork();
    if (server_ == 0) {
      const int quiet = open("/dev/null", O_WRONLY);
      dup2(quiet, STDERR_FILENO);
      const std::string descriptor = std::to_string(ends[1]);
      execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", "1280x1024x24", "-nolisten", "tcp",
             nullptr);
      _exit(127);
    }
    close(ends[1]);
    char number[16] = {};
    if (server_ < 0 || read(ends[0], number, sizeof number - 1) <= 0) give_up("Xvfb does not start.");
    close(ends[0]);
    name_ = ":" + std::to_string(std::atoi(number));
  }
  ~virtual_display() {
    kill(server_, SIGTERM);
    waitpid(server_, nullptr, 0);
  }
  virtual_display(const virtual_display&) = delete;
  virtual_display& operator=(const virtual_display&) = delete;
  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  pid_t server_ = -1;
  std::string name_;
};

void wait_for_first_window(xcb_connection_t* display) {
  for (;;) {
    xcb_generic_event_t* event = xcb_wait_for_event(display);
    if (event == nullptr) give_up("The display went away.");
    const bool mapped = (event->response_type & 0x7F) == XCB_MAP_NOTIFY;
    std::free(event);
    if (mapped) return;
  }
}

void drop_pending_events(xcb_connection_t* display) {
  while (xcb_generic_event_t* event = xcb_poll_for_event(display)) std::free(event);
}

double seconds_to_window(xcb_connection_t* display, const char* program) {
  drop_pending_events(display);
  pid_t child = -1;
  const double seconds = seconds_of([&] {
    child = fork();
    if (child == 0) {
      const int quiet = open("/dev/null", O_WRONLY);
      dup2(quiet, STDERR_FILENO);
      execl(program, program, nullptr);
      _exit(127);
    }
    wait_for_first_window(display);
  });
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  return seconds;
}

}  // namespace

int main() {
  const scratch_database database;
  const virtual_display server;
  setenv("DISPLAY", server.name().c_str(), 1);
  setenv("QT_QPA_PLATFORM", "xcb", 1);
  // Without a session bus at hand the library would spend its time launching one.
  setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
  xcb_connection_t* display = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(display) != 0) give_up("The display can not be opened.");
  const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(display, xcb_setup_roots_iterator(xcb_get_setup(display)).data->root, XCB_CW_EVENT_MASK,
                               &mask);
  xcb_flush(display);

  const std::array programs{EMPTY_PROGRAM, PLAIN_PROGRAM, SORVANE_PROGRAM};
  std::array<std::vector<double>, programs.size()> samples;
  for (int round = -2; round < rounds; ++round) {
    for (std::size_t i = 0; i < programs.size(); ++i) {
      const double seconds = seconds_to_window(display, programs[i]);
      if (round >= 0) samples[i].push_back(seconds);
    }
  }
  xcb_disconnect(display);
  const double empty = median(samples[0]);
  const double plain = median(samples[1]);
  const double login = median(samples[2]);
  print_table_head();
  print_row("start to an empty Qt window", fmt::format("{:.1f} ms", empty * 1e3), "");
  print_row("start to a bare Qt dialog with the login's widgets, over that",
            fmt::format("{:.2f} ({:.1f} ms)", plain / empty, plain * 1e3), "");
  print_row("start to the login window, over the empty window",
            fmt::format("{:.2f} ({:.1f} ms)", login / empty, login * 1e3), "<= 1.3");
  print_row("start to the login window, over the bare dialog", fmt::format("{:.2f}", login / plain), "");
  return 0;
}
