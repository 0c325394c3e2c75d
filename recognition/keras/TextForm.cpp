#include "recognition/keras/TextForm.h"

#include <istream>

#include "common/MessageWriter.h"

namespace keras {
namespace {

using veral3::Message;
using veral3::MessageStream;

void ReadBracket(std::istream& text, char bracket, const char* complaint) {
  char c = 0;
  text >> c;
  if (c != bracket) Message(MessageStream::kError) << complaint << c << "\n";
}

}  // namespace

bool ReadTextGroup(std::istream& text, std::size_t count, const TextBrackets& brackets,
                   std::vector<double>& numbers) {
  ReadBracket(text, '[', brackets.open);
  for (std::size_t i = 0; i < count; ++i) {
    double number = 0.0;
    if (!(text >> number)) return false;
    numbers.push_back(number);
  }
  if (!text) return false;  // an empty group must not go on for ever after the end
  ReadBracket(text, ']', brackets.close);
  return true;
}

int ReportShortText(const char* layer) {
  Message(MessageStream::kError) << "ERROR in " << layer
                                 << "::load_weights(). The numbers end too early.\n";
  return -1;
}

}  // namespace keras
