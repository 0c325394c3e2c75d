// The four classifier kinds: loading with its messages, classifying one and many, sizes that do not
// fit, no model at all.

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <thread>

#include "recognition/DLCTToneClassifier.h"
#include "recognition/DLFrameClassifier.h"
#include "recognition/DLPhonClassifier.h"
#include "recognition/UGClassifier.h"
#include "recognition/keras/LayerDense.h"
#include "recognition/keras/NetworkBuilder.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

using testing::ElementsAre;

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what)) {
    text.replace(at, what.size(), with);
  }
  return text;
}

int LoadKind(const std::string& kind, const std::string& path) {
  if (kind == "frame") return DLFrameClassifier().LoadFromFile(path.c_str());
  if (kind == "phon") return DLPhonClassifier().LoadFromFile(path.c_str());
  if (kind == "tone") return DLCTToneClassifier().LoadFromFile(path.c_str());
  return UGClassifier().LoadFromFile(path.c_str());
}

// A file with one dense layer.
std::string DenseFile(const ScratchFolder& folder, int inputs, int neurons, char activation,
                      double weight, double bias, int version = 4) {
  const auto count = static_cast<std::size_t>(neurons);
  std::vector<std::unique_ptr<keras::Layer>> layers;
  layers.push_back(std::make_unique<keras::LayerDense>(
      std::vector<double>(static_cast<std::size_t>(inputs) * count, weight),
      std::vector<double>(count, bias), activation));
  const std::string path = (folder.Path() / "dense.model").string();
  EXPECT_EQ(keras::KerasModel(version, std::move(layers)).save_binary_weights(path), 0);
  return path;
}

TEST(Classifiers, ReferenceLoads) {
  const nlohmann::json cases = LoadVectorJson("classifiers.json").at("load_cases");
  ASSERT_EQ(cases.size(), 8u);
  for (const nlohmann::json& c : cases) {
    const std::string path = VectorPath(c.at("file")).string();
    SCOPED_TRACE(path);
    MessageCapture messages;
    EXPECT_EQ(LoadKind(c.at("kind"), path), c.at("result").get<int>());
    EXPECT_EQ(messages.StandardError(),
              Replaced(c.at("stderr").get<std::string>(), "<PATH>", path));
    EXPECT_EQ(messages.StandardOutput(), "");
  }
}

TEST(Classifiers, ReferenceClassifications) {
  for (const nlohmann::json& c : LoadVectorJson("classifiers.json").at("classify_cases")) {
    const std::string path = VectorPath(c.at("file")).string();
    SCOPED_TRACE(path);
    MessageCapture messages;
    DLFrameClassifier frame;
    DLPhonClassifier phon;
    ASSERT_EQ(frame.LoadFromFile(path.c_str()), phon.LoadFromFile(path.c_str()));
    messages.Clear();
    const std::vector<float> input = c.at("input");
    const std::vector<double> frame_expected = c.at("frame_kind");
    const std::vector<double> phon_expected = c.at("phon_kind");
    std::vector<double> output(frame_expected.size());
    const auto length = static_cast<int>(input.size());
    const auto count = static_cast<int>(output.size());
    EXPECT_EQ(frame.ClassifyFrame(input.data(), length, output.data(), count), 0);
    for (std::size_t i = 0; i < output.size(); ++i) {
      EXPECT_NEAR(output[i], frame_expected[i], 1e-13 * std::abs(frame_expected[i])) << i;
    }
    EXPECT_EQ(phon.ClassifyPhon(input.data(), length, output.data(), count), 0);
    for (std::size_t i = 0; i < output.size(); ++i) {
      EXPECT_NEAR(output[i], phon_expected[i], 1e-13 * std::abs(phon_expected[i])) << i;
    }
    EXPECT_EQ(messages.All(), "");
  }
}

TEST(Classifiers, ReferenceModelsLoad) {
  for (const auto& [name, file] : LoadVectorJson("classifiers.json").at("models").items()) {
    MessageCapture messages;
    EXPECT_GE(LoadKind(name.substr(0, name.find('_')), VectorPath(file).string()), 0) << name;
  }
}

TEST(Classifiers, LoadedLines) {
  const struct {
    const char* kind;
    int inputs, outputs;
    const char* line;
  } rows[] = {{"frame", 195, 111, "FC Model loaded: ["},
              {"phon", 624, 37, "PC Model loaded: ["},
              {"tone", 68, 5, "TC Model loaded: ["},
              {"good", 16, 2, "UGC Model loaded: ["}};
  for (const auto& row : rows) {
    const ScratchFolder folder;
    const std::string path = DenseFile(folder, row.inputs, row.outputs, 'o', 0.5, 0.0, 17);
    const MessageCapture messages;
    EXPECT_EQ(LoadKind(row.kind, path), 17);
    EXPECT_EQ(messages.Of(MessageStream::kError), row.line + path + "];\tVersion = [17]\n");
    EXPECT_EQ(messages.All(), messages.Of(MessageStream::kError));
  }
}

TEST(Classifiers, FilesThatDoNotOpen) {
  {
    MessageCapture messages;
    EXPECT_EQ(LoadKind("frame", "/no/such"), -1);
    EXPECT_EQ(messages.StandardError(),
              "*** Error: Cannot load Keras Model file </no/such>\n"
              "ERROR! Cannot load model file [/no/such]\n");
  }
  {
    MessageCapture messages;
    EXPECT_EQ(LoadKind("phon", "/no/such"), -1);
    EXPECT_EQ(messages.StandardError(),
              "*** Error: Cannot load Keras Model file </no/such>\n"
              "ERROR! Cannot load model file [/no/such]\n");
  }
  for (const char* kind : {"tone", "good"}) {  // the network's message alone
    MessageCapture messages;
    EXPECT_EQ(LoadKind(kind, "/no/such"), -1);
    EXPECT_EQ(messages.StandardError(), "*** Error: Cannot load Keras Model file </no/such>\n");
  }
  MessageCapture messages;
  EXPECT_EQ(DLFrameClassifier().LoadFromFile(nullptr), -1);
  EXPECT_EQ(DLPhonClassifier().LoadFromFile(nullptr), -1);
  EXPECT_EQ(DLCTToneClassifier().LoadFromFile(nullptr), -1);
  EXPECT_EQ(UGClassifier().LoadFromFile(nullptr), -1);
}

TEST(Classifiers, ModelWithoutLayersIsRefused) {
  const ScratchFolder folder;
  const std::string path = (folder.Path() / "empty").string();
  WriteFile(path, ModelBytes().Header(5, 0).Bytes());
  for (const char* kind : {"frame", "phon", "tone", "good"}) {
    MessageCapture messages;
    EXPECT_EQ(LoadKind(kind, path), -1);
    EXPECT_THAT(messages.StandardError(), testing::EndsWith("get_input_rows() != 1\n"));
  }
}

TEST(Classifiers, VersionComesBackAsTheFileHasIt) {
  const ScratchFolder folder;
  MessageCapture messages;
  for (const int version : {0, 2147483647, -7}) {
    DLFrameClassifier classifier;
    const std::string path = DenseFile(folder, 2, 2, 'r', 1.0, 0.0, version);
    EXPECT_EQ(classifier.LoadFromFile(path.c_str()), version);
    EXPECT_TRUE(classifier.IsLoaded());
  }
}

TEST(Classifiers, SecondLoadReplacesAndAFailedOneLeavesNone) {
  const ScratchFolder folder;
  MessageCapture messages;
  DLPhonClassifier classifier;
  const float input = 2.0f;
  double output = 0.0;
  ASSERT_EQ(classifier.LoadFromFile(DenseFile(folder, 1, 1, 'r', 1.0, 0.0).c_str()), 4);
  ASSERT_EQ(classifier.ClassifyPhon(&input, 1, &output, 1), 0);
  EXPECT_EQ(output, 2.0);
  ASSERT_EQ(classifier.LoadFromFile(DenseFile(folder, 1, 1, 'r', 3.0, 0.0).c_str()), 4);
  ASSERT_EQ(classifier.ClassifyPhon(&input, 1, &output, 1), 0);
  EXPECT_EQ(output, 6.0);
  ASSERT_EQ(classifier.LoadFromFile("/no/such"), -1);
  EXPECT_FALSE(classifier.IsLoaded());
  EXPECT_EQ(classifier.ClassifyPhon(&input, 1, &output, 1), -1);
  EXPECT_EQ(output, 0.0);
}

TEST(Classifiers, FrameScoresHaveAFloorAndPhonemeScoresHaveNot) {
  const ScratchFolder folder;
  MessageCapture messages;
  const float input = 1.0f;
  for (const double value : {-0.5, 0.0, 1e-7}) {
    const std::string path = DenseFile(folder, 1, 1, 't', 0.0, value);
    DLFrameClassifier frame;
    DLPhonClassifier phon;
    ASSERT_EQ(frame.LoadFromFile(path.c_str()), 4);
    ASSERT_EQ(phon.LoadFromFile(path.c_str()), 4);
    double output = 9.0;
    EXPECT_EQ(frame.ClassifyFrame(&input, 1, &output, 1), 0);
    EXPECT_EQ(output, 1e-6);
    EXPECT_EQ(phon.ClassifyPhon(&input, 1, &output, 1), 0);
    EXPECT_EQ(output, std::tanh(static_cast<double>(static_cast<float>(value))));
  }
}

// Weights that are no numbers do not become a score that no comparison holds for.
TEST(Classifiers, AFrameScoreThatIsNoNumberIsTheFloor) {
  const ScratchFolder folder;
  MessageCapture messages;
  const std::string path = DenseFile(folder, 1, 3, 'r', std::nan(""), 0.0);
  DLFrameClassifier frame;
  DLPhonClassifier phon;
  ASSERT_EQ(frame.LoadFromFile(path.c_str()), 4);
  ASSERT_EQ(phon.LoadFromFile(path.c_str()), 4);
  const std::vector<float> inputs = {1.0F, -2.0F};
  std::vector<double> outputs(6, 9.0);
  ASSERT_EQ(phon.ClassifyPhon(inputs.data(), 1, outputs.data(), 3), 0);
  ASSERT_TRUE(std::isnan(outputs[0]));
  EXPECT_EQ(frame.ClassifyFrame(inputs.data(), 1, outputs.data(), 3), 0);
  EXPECT_THAT(outputs, ElementsAre(1e-6, 1e-6, 1e-6, 9, 9, 9));
  EXPECT_EQ(frame.ClassifyFrames(inputs.data(), 2, 1, outputs.data(), 3), 0);
  EXPECT_THAT(outputs, testing::Each(1e-6));
}

TEST(Classifiers, SizesThatDoNotFitAreReportedAndGoneOnWith) {
  const ScratchFolder folder;
  MessageCapture messages;
  DLFrameClassifier frame;
  DLPhonClassifier phon;
  const std::string path = DenseFile(folder, 2, 2, 'r', 1.0, 0.5);
  frame.LoadFromFile(path.c_str());
  phon.LoadFromFile(path.c_str());
  const std::vector<float> input = {1, 2, 100};
  std::vector<double> output(4, 9.0);

  messages.Clear();  // more inputs than the model takes: the first ones count
  EXPECT_EQ(frame.ClassifyFrame(input.data(), 3, output.data(), 2), -1);
  EXPECT_THAT(output, ElementsAre(3.5, 3.5, 9, 9));
  EXPECT_EQ(messages.StandardError(),
            "ERROR in FrameClassifier::ClassifyFrame(), incorrect size of input array.\n");

  messages.Clear();  // fewer: the layer refuses
  EXPECT_EQ(phon.ClassifyPhon(input.data(), 1, output.data(), 2), -1);
  EXPECT_EQ(messages.StandardError(),
            "ERROR in PhonClassifier::ClassifyPhon(), incorrect size of input array.\n"
            "ERROR in KerasModel::compute_output() - Cannot process layer. Layer type=[D]\n"
            "ERROR in PhonClassifier::ClassifyPhon(), incorrect size of output array.\n");

  messages.Clear();  // more outputs than it gives: the rest is 0, or the floor
  EXPECT_EQ(frame.ClassifyFrame(input.data(), 2, output.data(), 4), -1);
  EXPECT_THAT(output, ElementsAre(3.5, 3.5, 1e-6, 1e-6));
  EXPECT_EQ(messages.StandardError(),
            "ERROR in FrameClassifier::ClassifyFrame(), incorrect size of output array.\n");
  messages.Clear();
  EXPECT_EQ(phon.ClassifyPhon(input.data(), 2, output.data(), 1), -1);
  EXPECT_EQ(messages.StandardError(),
            "ERROR in PhonClassifier::ClassifyPhon(), incorrect size of output array.\n");

  for (const auto& [in, length, out, count] :
       {std::tuple{static_cast<const float*>(nullptr), 2, output.data(), 2},
        {input.data(), -2, output.data(), 2},
        {input.data(), 2, static_cast<double*>(nullptr), 2},
        {input.data(), 2, output.data(), -2}}) {
    EXPECT_EQ(frame.ClassifyFrame(in, length, out, count), -1);
    EXPECT_EQ(phon.ClassifyPhon(in, length, out, count), -1);
    EXPECT_EQ(frame.ClassifyFrames(in, 1, length, out, count), -1);
    EXPECT_EQ(phon.ClassifyPhons(in, 1, length, out, count), -1);
  }
}

TEST(Classifiers, BatchGivesTheBitsAndMessagesOfOneAtATime) {
  const std::string frame_en = VectorPath("models/frame_en.bin").string();
  const std::string convolution = VectorPath("models/load_frame_C_3.bin").string();
  std::mt19937 random(1);
  std::normal_distribution<float> normal;
  std::vector<float> inputs(195 * 37);
  for (float& value : inputs) value = normal(random);
  MessageCapture messages;
  DLFrameClassifier frame;
  DLPhonClassifier phon;
  ASSERT_GE(frame.LoadFromFile(frame_en.c_str()), 0);
  ASSERT_GE(phon.LoadFromFile(frame_en.c_str()), 0);
  for (const auto& [length, outputs] : {std::pair{195, 111}, {195, 112}, {194, 111}, {190, 5}}) {
    SCOPED_TRACE(length);
    const auto width = static_cast<std::size_t>(outputs);
    std::vector<double> one(37 * width);
    std::vector<double> batch(one.size());
    const bool fits = length == 195 && outputs == 111;
    messages.Clear();
    for (std::size_t n = 0; n < 37; ++n) {
      frame.ClassifyFrame(&inputs[n * static_cast<std::size_t>(length)], length, &one[n * width],
                          outputs);
    }
    const std::string texts = messages.All();
    messages.Clear();
    EXPECT_EQ(frame.ClassifyFrames(inputs.data(), 37, length, batch.data(), outputs),
              fits ? 0 : -1);
    EXPECT_EQ(messages.All(), texts);
    EXPECT_EQ(Bits(batch), Bits(one));
    for (std::size_t n = 0; n < 37; ++n) {
      phon.ClassifyPhon(&inputs[n * static_cast<std::size_t>(length)], length, &one[n * width],
                        outputs);
    }
    EXPECT_EQ(phon.ClassifyPhons(inputs.data(), 37, length, batch.data(), outputs), fits ? 0 : -1);
    EXPECT_EQ(Bits(batch), Bits(one));
  }
}

TEST(Classifiers, WithoutAModel) {
  MessageCapture messages;
  const float input = 0.0f;
  double output = 7.0;
  EXPECT_EQ(DLFrameClassifier().ClassifyFrame(&input, 1, &output, 1), -1);
  EXPECT_EQ(output, 1e-6);
  EXPECT_EQ(DLFrameClassifier().ClassifyFrames(&input, 1, 1, &output, 1), -1);
  EXPECT_EQ(DLPhonClassifier().ClassifyPhon(&input, 1, &output, 1), -1);
  EXPECT_EQ(output, 0.0);
  EXPECT_EQ(DLPhonClassifier().ClassifyPhons(&input, 1, 1, &output, 1), -1);
  const std::vector<int> features(68);
  std::vector<double> tones(5, 7.0);
  EXPECT_EQ(DLCTToneClassifier().ClassifyTone(features.data(), tones.data()), -1);
  EXPECT_THAT(tones, testing::Each(0.0));
  const std::vector<double> goodness(16);
  EXPECT_EQ(UGClassifier().ClassifyUtteranceGoodness(goodness.data()), 0.0);
  EXPECT_EQ(messages.Entries().size(), 6u);
  for (const MessageCapture::Entry& entry : messages.Entries()) {
    EXPECT_THAT(entry.text, testing::EndsWith("no model is loaded.\n"));
  }
}

TEST(Classifiers, ToneScoresComeAsTheyAre) {
  const ScratchFolder folder;
  MessageCapture messages;
  DLCTToneClassifier tone;
  std::vector<int> features(68);
  features[0] = -3;
  features[67] = 1000;
  std::vector<double> output(5);
  ASSERT_EQ(tone.LoadFromFile(DenseFile(folder, 68, 5, 't', -0.001, 0.0).c_str()), 4);
  messages.Clear();
  EXPECT_EQ(tone.ClassifyTone(features.data(), output.data()), 0);
  for (const double score : output) {
    EXPECT_NEAR(score, std::tanh(-0.997), 1e-6);
  }
  EXPECT_EQ(messages.All(), "");

  ASSERT_EQ(tone.LoadFromFile(DenseFile(folder, 68, 4, 'r', 0.0, 2.0).c_str()), 4);
  messages.Clear();
  EXPECT_EQ(tone.ClassifyTone(features.data(), output.data()), -1);
  EXPECT_EQ(messages.StandardError(),  // the frame classifier's text
            "ERROR in FrameClassifier::ClassifyFrame(), incorrect size of output array.\n");
  EXPECT_THAT(output, ElementsAre(2, 2, 2, 2, 0));
}

TEST(Classifiers, GoodnessIsTheFirstOutput) {
  const ScratchFolder folder;
  MessageCapture messages;
  UGClassifier goodness;
  const std::vector<double> features(16, 1.0);
  ASSERT_EQ(goodness.LoadFromFile(DenseFile(folder, 16, 2, 'r', 0.25, 1.0).c_str()), 4);
  messages.Clear();
  EXPECT_EQ(goodness.ClassifyUtteranceGoodness(features.data()), 5.0);
  EXPECT_EQ(messages.All(), "");
  ASSERT_EQ(goodness.LoadFromFile(DenseFile(folder, 16, 3, 'r', 0.25, 1.0).c_str()), 4);
  messages.Clear();
  EXPECT_EQ(goodness.ClassifyUtteranceGoodness(features.data()), 5.0);
  EXPECT_EQ(messages.StandardError(),
            "ERROR in UGClassifier::ClassifyUtteranceGoodness(), incorrect size of output "
            "array.\n");
}

TEST(Classifiers, ThreadsClassifyOnOneModel) {
  MessageCapture messages;
  DLFrameClassifier frame;
  ASSERT_GE(frame.LoadFromFile(VectorPath("models/frame_zh.bin").string().c_str()), 0);
  std::vector<float> inputs(195 * 64);
  for (std::size_t i = 0; i < inputs.size(); ++i) inputs[i] = std::sin(static_cast<float>(i));
  const auto classify = [&](bool batch) {
    std::vector<double> outputs(99 * 64);
    if (batch) {
      frame.ClassifyFrames(inputs.data(), 64, 195, outputs.data(), 99);
    } else {
      for (std::size_t n = 0; n < 64; ++n) {
        frame.ClassifyFrame(&inputs[195 * n], 195, &outputs[99 * n], 99);
      }
    }
    return outputs;
  };
  const std::vector<double> expected = classify(true);
  std::vector<std::vector<double>> results(4);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < results.size(); ++i) {
    threads.emplace_back([&, i] { results[i] = classify(i % 2 == 0); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::vector<double>& result : results) EXPECT_EQ(Bits(result), Bits(expected));
}

}  // namespace
}  // namespace veral3::test
