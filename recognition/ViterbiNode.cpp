#include "recognition/ViterbiNode.h"

#include "common/MessageWriter.h"

using veral3::Message;
using veral3::MessageStream;

void ViterbiNode::AddNextNode(std::int32_t node) {
  if (next.size() >= kMaxNextNodes) {
    Message(MessageStream::kError) << "ERROR: Too many Next Nodes in ViterbiNode::AddNextNode\n";
    return;
  }
  next.push_back(node);
}

void ViterbiHeads::AddHead(std::int32_t node) {
  if (m_nodes.size() >= kMaxHeads) {
    Message(MessageStream::kError) << "ERROR: Too many heads in ViterbiHeads::AddHead()\n";
    return;
  }
  m_nodes.push_back(node);
}

void ViterbiHeads::AddHeads(const ViterbiHeads& heads) {
  for (const std::int32_t node : heads.m_nodes) AddHead(node);
}
