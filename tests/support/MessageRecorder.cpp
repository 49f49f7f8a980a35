#include "support/MessageRecorder.h"

namespace kelvary::testing {

MessageRecorder::MessageRecorder() {
  previous_ = SetMessageHandler(
      [this](const std::string& text, MsgBoxStyle buttons, const std::string& title) {
        messages_.push_back({text, buttons, title});
        if (!answers_.empty()) {
          MsgBoxResult answer = answers_.front();
          answers_.pop_front();
          return answer;
        }
        return buttons == vbYesNo ? vbNo : vbOK;
      });
}

MessageRecorder::~MessageRecorder() {
  SetMessageHandler(std::move(previous_));
}

std::vector<std::string> MessageRecorder::Texts() const {
  std::vector<std::string> texts;
  for (const auto& m : messages_)
    texts.push_back(m.text);
  return texts;
}

}  // namespace kelvary::testing
