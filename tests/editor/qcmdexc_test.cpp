#include "as400/qcmdexc.h"

#include <gtest/gtest.h>

namespace {

TEST(qcmdexc, the_call_carries_the_command_and_its_length_in_characters) {
  EXPECT_EQ(qcmdexc_call("DSPJOBLOG OUTPUT(*OUTFILE) OUTFILE(CODE/JLTEST)", "."),
            "call qsys.qcmdexc('DSPJOBLOG OUTPUT(*OUTFILE) OUTFILE(CODE/JLTEST)',0000000047.00000)");
  EXPECT_EQ(qcmdexc_call("enddbg", "/"), "call qsys/qcmdexc('enddbg',0000000006.00000)");
  EXPECT_EQ(qcmdexc_call("", "."), "call qsys.qcmdexc('',0000000000.00000)");
  EXPECT_EQ(qcmdexc_call("SNDMSG 'Grüße €'", "."), "call qsys.qcmdexc('SNDMSG 'Grüße €'',0000000016.00000)");
}

}  // namespace
