#include "kelvary/platform/Messages.h"

#include <iostream>
#include <mutex>

namespace kelvary {
namespace {

std::mutex handler_mutex;

MessageHandler& HandlerSlot() {
  static MessageHandler handler;
  return handler;
}

MsgBoxResult DefaultHandler(const std::string& text, MsgBoxStyle buttons, const std::string&) {
  std::cerr << text << std::endl;
  if (buttons == vbYesNo) return vbNo;
  if (buttons == vbOKCancel) return vbCancel;
  return vbOK;
}

}  // namespace

MsgBoxResult MsgBox(const std::string& text, MsgBoxStyle buttons, const std::string& title) {
  MessageHandler handler;
  {
    std::lock_guard<std::mutex> lock(handler_mutex);
    handler = HandlerSlot();
  }
  return handler ? handler(text, buttons, title) : DefaultHandler(text, buttons, title);
}

MessageHandler SetMessageHandler(MessageHandler handler) {
  std::lock_guard<std::mutex> lock(handler_mutex);
  MessageHandler previous = std::move(HandlerSlot());
  HandlerSlot() = std::move(handler);
  return previous;
}

}  // namespace kelvary
