#include "kelvary/platform/Messages.h"

#include <gtest/gtest.h>

#include "support/MessageRecorder.h"

namespace kelvary {
namespace {

TEST(Messages, TheChannelIsReplaceableAndRestored) {
  {
    testing::MessageRecorder recorder;
    recorder.AnswerNext(vbYes);
    EXPECT_EQ(MsgBox("Delete?", vbYesNo), vbYes);
    EXPECT_EQ(MsgBox("Delete again?", vbYesNo), vbNo);  // queue empty: No
    EXPECT_EQ(MsgBox("Done"), vbOK);
    EXPECT_EQ(recorder.Texts(), (std::vector<std::string>{"Delete?", "Delete again?", "Done"}));
    EXPECT_EQ(recorder.Messages()[0].buttons, vbYesNo);
  }
  // The default channel writes to standard error and never says Yes.
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(MsgBox("Remove all rows?", vbYesNo), vbNo);
  EXPECT_EQ(MsgBox("Note"), vbOK);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Remove all rows?\nNote\n");
}

}  // namespace
}  // namespace kelvary
