#include "recognition/keras/LayerDropout.h"

#include "common/MessageWriter.h"

namespace keras {

void LayerDropout::print_weights() const {
  veral3::Message(veral3::MessageStream::kOutput) << "Dropout Layer has no weights:\n";
}

}  // namespace keras
