#include "recognition/VTokenList.h"

#include "common/MessageWriter.h"

using veral3::Message;
using veral3::MessageStream;

void VTokenList::KeepBestToken() {
  if (m_tokens.size() < 2) return;
  ViterbiToken best = m_tokens.back();
  for (auto token = m_tokens.rbegin(); token != m_tokens.rend(); ++token) {
    if (token->score > best.score) best = *token;
  }
  m_tokens.assign(1, best);
}

const ViterbiToken* VTokenList::GetWinnerToken() const {
  if (m_tokens.empty()) {
    Message(MessageStream::kError) << "ERROR! No Winner Token  in VTokenList::GetWinnerToken().\n";
    return nullptr;
  }
  if (m_tokens.size() > 1) {
    Message(MessageStream::kError)
        << "ERROR! More than one Winner Token  in VTokenList::GetWinnerToken().\n";
  }
  return &m_tokens.back();
}
