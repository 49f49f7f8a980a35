// The message channel: the modal message box of the system. The process has
// one replaceable handler; the default writes the text to standard error and
// answers OK, and No to a Yes/No question, so that nothing is deleted unasked.
// A host installs its own handler (a real message box), a test a recorder.
#pragma once

#include <functional>
#include <string>

namespace kelvary {

// Buttons of a message box.
enum MsgBoxStyle : int {
  vbOKOnly = 0,
  vbOKCancel = 1,
  vbYesNo = 4,
};

// The answer.
enum MsgBoxResult : int {
  vbOK = 1,
  vbCancel = 2,
  vbYes = 6,
  vbNo = 7,
};

// MsgBox shows text with the given buttons (and the default title when
// title is empty) and returns the choice.
MsgBoxResult MsgBox(const std::string& text, MsgBoxStyle buttons = vbOKOnly,
                    const std::string& title = "");

using MessageHandler = std::function<MsgBoxResult(const std::string& text, MsgBoxStyle buttons,
                                                  const std::string& title)>;

// SetMessageHandler installs handler for the whole process and returns the
// previous one; an empty handler restores the default.
MessageHandler SetMessageHandler(MessageHandler handler);

}  // namespace kelvary
