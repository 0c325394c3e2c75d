#include "support/MessageCapture.h"

#include "common/MessageWriter.h"

namespace veral3::test {

MessageCapture::MessageCapture() {
  SetMessageHandler([this](MessageStream stream, std::string_view text) {
    m_entries.push_back({stream, std::string(text)});
  });
}

MessageCapture::~MessageCapture() { SetMessageHandler({}); }

std::string MessageCapture::All() const {
  std::string all;
  for (const Entry& entry : m_entries) all += entry.text;
  return all;
}

std::string MessageCapture::Of(MessageStream stream) const {
  std::string all;
  for (const Entry& entry : m_entries) {
    if (entry.stream == stream) all += entry.text;
  }
  return all;
}

std::string MessageCapture::StandardError() const {
  std::string all;
  for (const Entry& entry : m_entries) {
    if (entry.stream == MessageStream::kError || entry.stream == MessageStream::kWideError) {
      all += entry.text;
    }
  }
  return all;
}

std::string MessageCapture::StandardOutput() const {
  std::string all;
  for (const Entry& entry : m_entries) {
    if (entry.stream == MessageStream::kOutput || entry.stream == MessageStream::kWideOutput) {
      all += entry.text;
    }
  }
  return all;
}

EndProcessTrap::EndProcessTrap() {
  SetEndProcessHandler([](int status) { throw EndedProcess{status}; });
}

EndProcessTrap::~EndProcessTrap() { SetEndProcessHandler({}); }

}  // namespace veral3::test
