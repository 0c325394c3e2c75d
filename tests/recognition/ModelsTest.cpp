#include "recognition/Models.h"

#include <gmock/gmock.h>

#include <atomic>
#include <limits>
#include <thread>

#include "recognition/CPhonemeSet.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

std::string Model(const char* name) {
  return VectorPath(std::string("models/") + name + ".bin").string();
}

TEST(Models, EachTypeFillsItsClassifier) {
  MessageCapture messages;
  const std::pair<const char*, ModelFileType> models[] = {
      {"frame_en", kFrameModelEnglish},  {"frame_zh", kFrameModelChinese},
      {"frame_ja", kFrameModelJapanese}, {"phon_en", kPhonemeModelEnglish},
      {"phon_zh", kPhonemeModelChinese}, {"phon_ja", kPhonemeModelJapanese},
      {"tone", kToneModelChinese},       {"good", kUttGoodnessModel}};
  for (const auto& [name, type] : models) {
    EXPECT_GE(LoadModelFile(Model(name).c_str(), type), 0) << name;
  }
  const int outputs[] = {111, 99, 78};
  const int identifiers[] = {CPhonemeSet::kEnglish, CPhonemeSet::kChinese, CPhonemeSet::kJapanese};
  messages.Clear();
  for (int i = 0; i < 3; ++i) {
    const std::vector<float> input(624);
    std::vector<double> output(111);
    ASSERT_NE(FrameClassifierOf(identifiers[i]), nullptr);
    ASSERT_NE(PhonClassifierOf(identifiers[i]), nullptr);
    EXPECT_EQ(FrameClassifierOf(identifiers[i])
                  ->ClassifyFrame(input.data(), 195, output.data(), outputs[i]),
              0);
    EXPECT_EQ(PhonClassifierOf(identifiers[i])
                  ->ClassifyPhon(input.data(), 624, output.data(), outputs[i] / 3),
              0);
  }
  EXPECT_TRUE(ToneClassifier().IsLoaded());
  EXPECT_TRUE(GoodnessClassifier().IsLoaded());
  EXPECT_EQ(messages.All(), "");
  for (const int identifier : {0, 1, 2, 3, 8, 12, -1}) {
    EXPECT_EQ(FrameClassifierOf(identifier), nullptr);
    EXPECT_EQ(PhonClassifierOf(identifier), nullptr);
  }
}

TEST(Models, TypesThatNameNoModelComeBack) {
  MessageCapture messages;
  for (const int type : {5, 6, 7, 11, 200, -1, -5, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(LoadModelFile(Model("frame_en").c_str(), static_cast<ModelFileType>(type)), type);
    EXPECT_EQ(LoadModelFile(nullptr, static_cast<ModelFileType>(type)), type);
  }
  EXPECT_EQ(messages.All(), "");
}

TEST(Models, NoPath) {
  MessageCapture messages;
  ASSERT_GE(LoadModelFile(Model("good").c_str(), kUttGoodnessModel), 0);
  messages.Clear();
  EXPECT_EQ(LoadModelFile(nullptr, kUttGoodnessModel), -1);
  EXPECT_TRUE(GoodnessClassifier().IsLoaded());
  EXPECT_EQ(messages.StandardError(), "ERROR in AnalyzedAudio::LoadModelFile(), no path given.\n");
}

TEST(Models, LoadingWhileInUseIsRefusedAndChangesNothing) {
  MessageCapture messages;
  ASSERT_GE(LoadModelFile(Model("good").c_str(), kUttGoodnessModel), 0);
  {
    const ModelsInUse one;
    const ModelsInUse another;  // the same thread may hold several
    messages.Clear();
    EXPECT_EQ(LoadModelFile("/no/such", kUttGoodnessModel), -1);
    EXPECT_EQ(messages.StandardError(),
              "ERROR in AnalyzedAudio::LoadModelFile(), the models are in use.\n");
    EXPECT_TRUE(GoodnessClassifier().IsLoaded());
  }
  EXPECT_GE(LoadModelFile(Model("good").c_str(), kUttGoodnessModel), 0);
}

TEST(Models, LoadsAndAnalysesOnManyThreads) {
  MessageCapture messages;
  const std::string path = Model("good");
  ASSERT_GE(LoadModelFile(path.c_str(), kUttGoodnessModel), 0);
  const std::vector<double> features(16, 0.5);
  const double expected = GoodnessClassifier().ClassifyUtteranceGoodness(features.data());
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([&] {
      for (int n = 0; n < 50; ++n) {
        const ModelsInUse use;
        if (GoodnessClassifier().ClassifyUtteranceGoodness(features.data()) != expected) ++wrong;
      }
    });
  }
  threads.emplace_back([&] {
    for (int n = 0; n < 50; ++n) LoadModelFile(path.c_str(), kUttGoodnessModel);  // may be refused
  });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace veral3::test
