#pragma once

#include <array>
#include <string>
#include <string_view>

#include "odbc/odbcstmt.h"

// The server job behind the connection: its attributes, read through a procedure that the user made on the server or,
// without it, from the job's own log; and the change of some of them.

// The attributes in the order of the procedure's parameters.
enum class job_field {
  job,
  user,
  nbr,
  loglvl,
  logsev,
  logtype,
  outq,
  outqlib,
  runpty,
  timeslice,
  usrlibl,
  curlib,
  syslibl,
  curuser
};
inline constexpr std::size_t job_field_count = 14;

// A text per attribute, "" for one that is not known.
class job_texts {
 public:
  std::string& operator[](job_field field) { return texts_[static_cast<std::size_t>(field)]; }
  const std::string& operator[](job_field field) const { return texts_[static_cast<std::size_t>(field)]; }
  friend bool operator==(const job_texts&, const job_texts&) = default;

 private:
  std::array<std::string, job_field_count> texts_;
};

struct job_reading {
  job_texts texts;
  bool can_change = true;  // false when only the job log was there to read name, user and number from
};

// The procedure's call with its 14 markers; blanks around the names are left out.
std::string job_information_call(std::string_view library, std::string_view procedure, std::string_view separator);

// Reads the attributes of the job that runs the statement. Failures are shown, and leave their texts empty. A procedure
// that returns fewer values, or some that have no text, leaves the others empty.
job_reading read_job(odbcstmt& statement, std::string_view library, std::string_view procedure,
                     std::string_view separator);

// What is wrong with the attributes that a change sends: the message for the first of them; "" when nothing is.
std::string wrong_job_attribute(const job_texts& typed);

// The command that changes run priority, job log settings and time slice of the job that the texts name. The values
// stand as they were typed, without blanks around them.
std::string chgjob_command(const job_texts& typed);

// Sends it. Whether the server obeyed is not told.
void change_job(odbcstmt& statement, const job_texts& typed, std::string_view separator);
