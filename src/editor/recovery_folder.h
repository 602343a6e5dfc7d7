#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// What is known of an unsaved document beside its text.
struct kept_heading {
  std::string caption;
  std::string file_name;  // "" when it never had one
};

struct kept_text {
  kept_heading heading;
  std::string bytes;  // as they would stand in a file
};

// The folder where the texts of unsaved documents are kept. Each running program has a session folder of its own in it,
// with a copy of every open unsaved text, and locks it: a session without its lock has crashed. The texts of closed
// documents stand in the folder "closed", whichever program closed them: the latest 50, for 30 days. Nothing here
// throws; what fails says why in the system's words.
class recovery_folder : public std::enable_shared_from_this<recovery_folder> {
 public:
  using clock = std::function<std::int64_t()>;  // milliseconds since 1970
  static constexpr std::size_t most_texts = 50;
  static constexpr std::int64_t longest_stay_ms = std::int64_t{30} * 24 * 60 * 60 * 1000;

  explicit recovery_folder(std::filesystem::path folder, clock now = {});
  ~recovery_folder();
  recovery_folder(const recovery_folder&) = delete;
  recovery_folder& operator=(const recovery_folder&) = delete;

  // The copy of one open document. A new one is written piece by piece beside the last whole one and then takes its
  // place. Gone, with its files, at the end of its life, unless close() has moved it.
  class copy {
   public:
    explicit copy(std::shared_ptr<recovery_folder> folder);
    ~copy();
    copy(const copy&) = delete;
    copy& operator=(const copy&) = delete;

    bool begin(const kept_heading& heading, std::string& why);
    bool append(std::string_view bytes, std::string& why);
    bool finish(std::string& why);
    // Forgets what was begun; the last whole copy stays.
    void abandon();
    // Forgets the whole copy too.
    void drop();
    // Writes a text and moves it to the closed ones. When that fails the text stays in this program's memory, where
    // take_latest finds it.
    bool close(kept_text text, std::string& why);

   private:
    friend class recovery_folder;
    std::shared_ptr<recovery_folder> folder_;
    std::filesystem::path file_;
    int descriptor_ = -1;
  };

  // Moves what crashed sessions left to the closed texts; how many there were.
  std::size_t adopt_crashed();
  // The latest closed text, which from now on stands in `into` as the copy of an open document. Nothing when there is
  // none.
  std::optional<kept_text> take_latest(copy& into);
  [[nodiscard]] std::size_t closed_count() const;
  // Remembers how the last copy went, "" for well; true when the one before went otherwise.
  bool failure_changed(const std::string& why) { return std::exchange(last_failure_, why) != why; }

 private:
  [[nodiscard]] std::filesystem::path closed_folder() const { return folder_ / "closed"; }
  [[nodiscard]] std::vector<std::filesystem::path> closed_files() const;  // oldest first
  bool open_session(std::string& why);
  void adopt_session(const std::filesystem::path& session, std::size_t& adopted);
  std::filesystem::path next_closed_file();
  void remove_old();

  std::filesystem::path folder_;
  clock now_;
  std::filesystem::path session_;
  int lock_ = -1;
  int documents_ = 0;
  int closed_now_ = 0;
  std::deque<kept_text> in_memory_;
  std::string last_failure_;
};
