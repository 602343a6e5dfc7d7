#include "as400/job_information.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <optional>

#include "as400/qcmdexc.h"
#include "base/conversions.h"
#include "base/text.h"
#include "base/user_interface.h"

namespace {

// The native code of a name that the server does not find.
constexpr std::int32_t object_not_found = -204;

constexpr const char* procedure_not_found =
    "Procedure not found.  Ensure that 1) you have created the procedure per the instruction in the documentation. 2) "
    "you have set the proper library and procedure name in the options panel if you did not use the default procedure "
    "name and library. Sorvane can only display the basic job information without the procedure anb job performance "
    "information can not be changed.";

constexpr std::string_view job_log_to_file =
    "QSYS/DSPJOBLOG OUTPUT(*OUTFILE) OUTFILE(QTEMP/QAUGDBJOBN) OUTMBR(*FIRST *REPLACE)";

// The message that starts a job's log carries the job's qualified name.
constexpr std::string_view job_name_from_file =
    "SELECT SUBSTRING(QMHJOB,1,10) AS JOBNAME,SUBSTRING(QMHJOB,11,10) AS USERNAME,SUBSTRING(QMHJOB, 21, 6) As JOBNUM "
    "FROM QTEMP.QAUGDBJOBN WHERE QMHMID = 'CPIAD02'";

constexpr std::array<std::string_view, 4> log_types{"*SAME", "*MSG", "*NOLIST", "*SECLVL"};

struct number_rule {
  job_field field;
  double least;
  double most;
  const char* not_a_number;
  const char* outside;
};
constexpr std::array before_log_type{
    number_rule{job_field::runpty, 0, 99, "Run priority must be a number", "Run priority must be between 0 and 99"},
    number_rule{job_field::timeslice, 100, std::numeric_limits<double>::infinity(), "Timeslice must be a number",
                "Timeslice must be greater than 100"},
};
constexpr std::array after_log_type{
    number_rule{job_field::logsev, 0, 99, "Log severity must be a number", "Log severity must be between 0 and 99"},
    number_rule{job_field::loglvl, 0, 4, "Log level must be a number", "Log level must be between 0 and 4"},
};

template <typename Rules>
const char* broken_rule(const Rules& rules, const job_texts& typed) {
  for (const number_rule& each : rules) {
    const auto number = parse_number(typed[each.field]);
    if (!number) return each.not_a_number;
    if (*number < each.least || *number > each.most) return each.outside;
  }
  return nullptr;
}

std::string log_type(const job_texts& typed) { return upper_case(trim_blanks(typed[job_field::logtype])); }

std::string text_of(const value& returned) { return returned.is_error() ? std::string() : to_text(returned); }

job_reading read_by_procedure(odbcstmt& statement) {
  job_reading reading;
  for (int i = 1; i <= statement.Nparms(); ++i) statement.BindProcParm(statement.ProcParmDefault(i), i);
  if (!statement.Execute()) {
    statement.Errd();
    return reading;
  }
  for (std::size_t i = 0; i < job_field_count; ++i) {
    reading.texts[static_cast<job_field>(i)] = text_of(statement.GetParm(static_cast<int>(i) + 1));
  }
  return reading;
}

job_reading read_from_job_log(odbcstmt& statement) {
  job_reading reading;
  statement.Cancel();
  show_message(
      {procedure_not_found, "Cannot execute the job number procedure.", message_icon::none, message_buttons::ok, {}});
  // The documented text is in capitals; so is the whole command.
  statement.Prep(upper_case(qcmdexc_call(job_log_to_file, ".")));
  statement.Execute();
  statement.Prep(job_name_from_file);
  statement.Execute();
  if (!statement.Fetch()) return reading;
  reading.texts[job_field::job] = text_of(statement.Getc(1));
  reading.texts[job_field::user] = text_of(statement.Getc(2));
  reading.texts[job_field::nbr] = text_of(statement.Getc(3));
  reading.can_change = false;
  statement.Cancel();
  return reading;
}

}  // namespace

std::string job_information_call(std::string_view library, std::string_view procedure, std::string_view separator) {
  return fmt::format("call {}{}{} (?,?,?,?,?,?,?,?,?,?,?,?,?,?)", trim_blanks(library), separator,
                     trim_blanks(procedure));
}

job_reading read_job(odbcstmt& statement, std::string_view library, std::string_view procedure,
                     std::string_view separator) {
  if (statement.ProcPrep(job_information_call(library, procedure, separator))) return read_by_procedure(statement);
  // Asked once: a driver gives a record out only once.
  const diagnostic_record said = statement.ErrData();
  if (said.native == object_not_found) return read_from_job_log(statement);
  show_diagnostic(said);
  return {};
}

std::string wrong_job_attribute(const job_texts& typed) {
  if (const char* broken = broken_rule(before_log_type, typed)) return broken;
  if (std::find(log_types.begin(), log_types.end(), log_type(typed)) == log_types.end()) {
    return "Invalid log type!  Must be *SAME,*MSG,*NOLIST or *SECLVL";
  }
  if (const char* broken = broken_rule(after_log_type, typed)) return broken;
  return {};
}

std::string chgjob_command(const job_texts& typed) {
  const auto as_typed = [&](job_field field) { return trim_blanks(typed[field]); };
  return fmt::format("chgjob JOB({}/{}/{}) RUNPTY({}) LOG({} {} {}) TIMESLICE({})", as_typed(job_field::nbr),
                     as_typed(job_field::user), as_typed(job_field::job), as_typed(job_field::runpty),
                     as_typed(job_field::loglvl), as_typed(job_field::logsev), log_type(typed),
                     as_typed(job_field::timeslice));
}

void change_job(odbcstmt& statement, const job_texts& typed, std::string_view separator) {
  statement.Prep(qcmdexc_call(chgjob_command(typed), separator));
  statement.Execute();
}
