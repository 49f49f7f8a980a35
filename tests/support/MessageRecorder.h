// MessageRecorder: replaces the process's message channel for the life of a
// test and records every message shown. Answers come from a queue the test
// fills (AnswerNext); with the queue empty, OK for OK boxes and No for
// Yes/No questions, like the default channel.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "kelvary/platform/Messages.h"

namespace kelvary::testing {

struct RecordedMessage {
  std::string text;
  MsgBoxStyle buttons;
  std::string title;
};

class MessageRecorder {
 public:
  MessageRecorder();
  ~MessageRecorder();  // restores the channel that was installed before
  MessageRecorder(const MessageRecorder&) = delete;
  MessageRecorder& operator=(const MessageRecorder&) = delete;

  void AnswerNext(MsgBoxResult answer) { answers_.push_back(answer); }
  const std::vector<RecordedMessage>& Messages() const { return messages_; }
  // Texts: the texts shown, in order.
  std::vector<std::string> Texts() const;
  void Clear() { messages_.clear(); }

 private:
  std::vector<RecordedMessage> messages_;
  std::deque<MsgBoxResult> answers_;
  MessageHandler previous_;
};

}  // namespace kelvary::testing
