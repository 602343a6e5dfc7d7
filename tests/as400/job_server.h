#pragma once

#include "scripted_driver.h"

// What the scripted driver answers in the place of an AS/400.
namespace job_server {

inline constexpr const char* call = "call TOOLLIB.RETJOBINFO (?,?,?,?,?,?,?,?,?,?,?,?,?,?)";
inline constexpr const char* job_log =
    "CALL QSYS.QCMDEXC('QSYS/DSPJOBLOG OUTPUT(*OUTFILE) OUTFILE(QTEMP/QAUGDBJOBN) OUTMBR(*FIRST *REPLACE)',"
    "0000000081.00000)";
inline constexpr const char* job_name =
    "SELECT SUBSTRING(QMHJOB,1,10) AS JOBNAME,SUBSTRING(QMHJOB,11,10) AS USERNAME,SUBSTRING(QMHJOB, 21, 6) As JOBNUM "
    "FROM QTEMP.QAUGDBJOBN WHERE QMHMID = 'CPIAD02'";
inline constexpr const char* chgjob =
    "call qsys.qcmdexc('chgjob JOB(123456/QUSER/QZDASOINIT) RUNPTY(20) LOG(4 0 *NOLIST) TIMESLICE(2000)',"
    "0000000079.00000)";

inline constexpr const char* library_list = "QGPL      QTEMP     SALES     ";

// The procedure's answer, of which it returns the first `count` values.
inline scripted::answer procedure(std::size_t count = 14) {
  const std::vector<std::pair<scripted::parameter, scripted::cell>> all{{{SQL_CHAR, 10}, "QZDASOINIT"},
                                                                        {{SQL_CHAR, 10}, "QUSER     "},
                                                                        {{SQL_CHAR, 6}, "123456"},
                                                                        {{SQL_CHAR, 1}, "4"},
                                                                        {{SQL_SMALLINT, 5}, 0},
                                                                        {{SQL_CHAR, 10}, "*NOLIST   "},
                                                                        {{SQL_CHAR, 10}, "QPRINT"},
                                                                        {{SQL_CHAR, 10}, "QGPL"},
                                                                        {{SQL_DECIMAL, 5}, 20.0},
                                                                        {{SQL_INTEGER, 10}, 2000},
                                                                        {{SQL_VARCHAR, 250}, library_list},
                                                                        {{SQL_CHAR, 10}, nullptr},
                                                                        {{SQL_VARCHAR, 165}, "QSYS"},
                                                                        {{SQL_CHAR, 10}, "MILLER"}};
  scripted::answer answer;
  for (std::size_t i = 0; i < count; ++i) {
    answer.parameters.push_back(all[i].first);
    answer.outputs[static_cast<SQLUSMALLINT>(i + 1)] = all[i].second;
  }
  return answer;
}

inline scripted::failure not_found() { return {SQL_ERROR, "42704", -204, "RETJOBINFO in TOOLLIB type *N not found"}; }

// No procedure; the job's log names it.
inline void without_procedure(scripted::driver& driver) {
  driver.answer_to(call, {.prepare_failure = not_found()});
  driver.answer_to(job_log, {});
  driver.answer_to(job_name,
                   {.columns = {{"JOBNAME", SQL_CHAR, 10}, {"USERNAME", SQL_CHAR, 10}, {"JOBNUM", SQL_CHAR, 6}},
                    .rows = {{"QZDASOINIT", "QUSER     ", "123456"}}});
}

// The texts sent to be prepared, in order.
inline std::vector<std::string> prepared(const scripted::driver& driver) {
  std::vector<std::string> texts;
  for (const scripted::call& each : driver.calls("SQLPrepare")) texts.push_back(each.args.at(0));
  return texts;
}

}  // namespace job_server
