#pragma once

#include <cstddef>
#include <cstdint>

// The noise suppressor of the WebRTC audio processing library, which Debian's
// libwebrtc-audio-processing exports without a header for it. Interface as published by the WebRTC
// project (BSD 3-clause), version 0.3 of the library.
extern "C" {

struct NsHandleT;
using NsHandle = NsHandleT;

NsHandle* WebRtcNs_Create();
void WebRtcNs_Free(NsHandle* instance);

// 0 on success. Takes 8000, 16000, 32000 and 48000 Hz.
int WebRtcNs_Init(NsHandle* instance, std::uint32_t sample_rate);

// 0 on success. 0: mild, 1: medium, 2: aggressive, 3: very aggressive.
int WebRtcNs_set_policy(NsHandle* instance, int mode);

// One block of 10 ms (160 samples at 16000 Hz) as floats of 16-bit size.
void WebRtcNs_Analyze(NsHandle* instance, const float* frame);
void WebRtcNs_Process(NsHandle* instance, const float* const* bands, std::size_t num_bands,
                      float* const* out_bands);
}
