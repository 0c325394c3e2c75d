// Models that must not be loaded, given to the commands that would load them.
#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>

#include "SmallResources.h"
#include "recognition/keras/KerasModel.h"
#include "recognition/keras/LayerDense.h"
#include "recognition/keras/LayerDropout.h"

namespace veral3::tools {
namespace {

using test::ProcessResult;
using testing::IsEmpty;
using Layers = std::vector<std::unique_ptr<keras::Layer>>;

void AddDense(Layers& layers, int inputs, int outputs, char activation, double weight = 0.125) {
  const auto width = static_cast<std::size_t>(outputs);
  layers.push_back(std::make_unique<keras::LayerDense>(
      std::vector<double>(static_cast<std::size_t>(inputs) * width, weight),
      std::vector<double>(width), activation));
}

class ModelRefusal : public test::SmallResources {
 protected:
  // Puts a network in the place of a model.
  void Replace(const std::string& model, Layers layers) {
    ASSERT_EQ(keras::KerasModel(1, std::move(layers)).save_binary_weights(Path("res/" + model)), 0);
  }
  void ReplaceByDense(const std::string& model, int inputs, int outputs, char activation,
                      double weight = 0.125) {
    Layers layers;
    AddDense(layers, inputs, outputs, activation, weight);
    Replace(model, std::move(layers));
  }
  void ReplaceByFile(const std::string& model, const std::string& other) {
    std::filesystem::copy_file(Path("res/" + other), Path("res/" + model),
                               std::filesystem::copy_options::overwrite_existing);
  }

  // Expects one sentence and status 2, and nothing said of a recording that is not there.
  void ExpectRefusal(const std::string& command, const std::string& model, const std::string& use,
                     const std::string& fault) {
    std::vector<std::string> arguments = {Path("not-there.wav")};
    if (command != "annotate") {
      arguments.insert(arguments.begin(), {"--text", "a apple"});
    }
    if (command == "grade") arguments.insert(arguments.begin(), "--pronunciation-only");
    if (command == "tutor") {
      arguments.insert(arguments.begin(), {"-o", Path("tutor.wav")});
    }
    const ProcessResult result = Run(command, "en", arguments);
    EXPECT_EQ(result.status, 2) << command;
    EXPECT_EQ(result.err, "veral3: " + Path("res/" + model) + " cannot be used as the " + use +
                              ": " + fault + "\n")
        << command;
    EXPECT_THAT(result.out, IsEmpty()) << command;
  }
};

TEST_F(ModelRefusal, AFrameModelOfAnotherLanguage) {
  ReplaceByFile("EnglishFrame.model", "ChineseFrame.model");
  for (const char* command : {"align", "analyze", "grade", "tutor", "annotate"}) {
    ExpectRefusal(command, "EnglishFrame.model", "English frame model",
                  "it has 195 inputs and 99 outputs like the Chinese frame model, not 195 inputs "
                  "and 111 outputs; load it as what it is, or give a file that was made as the "
                  "English frame model");
  }
}

TEST_F(ModelRefusal, APhonemeModelOfAnotherLanguage) {
  ReplaceByFile("EnglishPhon.model", "JapanesePhon.model");
  for (const char* command : {"analyze", "grade", "tutor"}) {
    ExpectRefusal(command, "EnglishPhon.model", "English phoneme model",
                  "it has 624 inputs and 26 outputs like the Japanese phoneme model, not 624 "
                  "inputs and 37 outputs; load it as what it is, or give a file that was made as "
                  "the English phoneme model");
  }
}

TEST_F(ModelRefusal, ModelsWithoutOutputsOrLayers) {
  Replace("EnglishFrame.model", {});
  ExpectRefusal("align", "EnglishFrame.model", "English frame model",
                "it has no layers; give a trained network");
  const std::string no_outputs = std::string("\1\0\0\0\1\0\0\0\0\0\0\0Dx\xC3\0\0\0\0\0\0\0", 22);
  std::string brackets;
  for (int i = 0; i < 196; ++i) brackets += "[]";
  veral3::test::WriteFile(Path("res/EnglishFrame.model"), no_outputs + brackets);
  ExpectRefusal("align", "EnglishFrame.model", "English frame model",
                "layer 1 has no outputs; train it again");
}

TEST_F(ModelRefusal, WeightsThatAreNotFinite) {
  for (const auto& [weight, is] : {std::pair{std::numeric_limits<double>::infinity(), "infinite"},
                                   std::pair{std::nan(""), "not a number"}}) {
    ReplaceByDense("EnglishFrame.model", 195, 111, 'x', weight);
    ExpectRefusal("align", "EnglishFrame.model", "English frame model",
                  std::string("layer 1 has a weight that is ") + is + "; train it again");
  }
}

TEST_F(ModelRefusal, LayersThatDoNothing) {
  Layers layers;
  AddDense(layers, 195, 111, 'x');
  for (int i = 0; i < 20000; ++i) layers.push_back(std::make_unique<keras::LayerDropout>());
  Replace("EnglishFrame.model", std::move(layers));
  ExpectRefusal("align", "EnglishFrame.model", "English frame model",
                "it announces 20001 layers; at most 100 are taken; leave out those that do "
                "nothing, such as dropout layers");
}

TEST_F(ModelRefusal, OutputsThatAreNoProbabilities) {
  ReplaceByDense("UttGoodness.model", 16, 2, 'r');
  for (const char* command : {"analyze", "grade"}) {
    ExpectRefusal(command, "UttGoodness.model", "utterance goodness model",
                  "its outputs are made by relu, so that they are no probabilities; train it with "
                  "softmax in its last layer, or sigmoid");
  }
  ReplaceByDense("EnglishFrame.model", 195, 111, 'g');
  ExpectRefusal("align", "EnglishFrame.model", "English frame model",
                "its outputs are made by sigmoid, so that they need not sum to 1; train it with "
                "softmax in its last layer");
}

// It would load, and end the process at the first frame.
TEST_F(ModelRefusal, AnActivationThatThereIsNot) {
  ReplaceByDense("EnglishFrame.model", 195, 111, 'q');
  ExpectRefusal("align", "EnglishFrame.model", "English frame model",
                "layer 1 has the unknown activation code 'q' (0x71); copy or make the file again");
}

}  // namespace
}  // namespace veral3::tools
