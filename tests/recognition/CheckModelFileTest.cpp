#include "recognition/CheckModelFile.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>

#include "recognition/UGClassifier.h"
#include "recognition/keras/NetworkBuilder.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kLargest = std::numeric_limits<float>::max();

// What the engine documents of its eight models.
struct Shape {
  ModelFileType type;
  const char* shipped;
  const char* name;
  int inputs;
  int outputs;
};
constexpr Shape kShapes[] = {
    {kFrameModelEnglish, "EnglishFrame.model", "English frame model", 195, 111},
    {kFrameModelChinese, "ChineseFrame.model", "Chinese frame model", 195, 99},
    {kFrameModelJapanese, "JapaneseFrame.model", "Japanese frame model", 195, 78},
    {kToneModelChinese, "ChineseTone.model", "Chinese tone model", 68, 5},
    {kUttGoodnessModel, "UttGoodness.model", "utterance goodness model", 16, 2},
    {kPhonemeModelEnglish, "EnglishPhon.model", "English phoneme model", 624, 37},
    {kPhonemeModelChinese, "ChinesePhon.model", "Chinese phoneme model", 624, 33},
    {kPhonemeModelJapanese, "JapanesePhon.model", "Japanese phoneme model", 624, 26},
};

// A dense layer all of whose weights and biases are `value`.
ModelBytes& AddDense(ModelBytes& bytes, char activation, int inputs, int outputs,
                     float value = 0.25f) {
  bytes.Layer('D').Char(activation).Int(inputs).Int(outputs);
  const std::vector<float> group(static_cast<std::size_t>(outputs), value);
  for (int i = 0; i <= inputs; ++i) bytes.Group(group);
  return bytes;
}

std::string OneLayer(char activation, int inputs, int outputs, float value = 0.25f) {
  ModelBytes bytes;
  bytes.Header(1, 1);
  return AddDense(bytes, activation, inputs, outputs, value).Bytes();
}

// 16 to 3 to 2, as a goodness model may be; its second layer begins at kSecondLayer.
std::string Goodness(char last = 'x') {
  ModelBytes bytes;
  bytes.Header(1, 2);
  AddDense(bytes, 'r', 16, 3);
  return AddDense(bytes, last, 3, 2).Bytes();
}
constexpr std::size_t kFirstLayer = 8;
constexpr std::size_t kSecondLayer = kFirstLayer + 5 + 9 + 17 * (2 + 4 * 3);

std::string WithInt(std::string bytes, std::size_t place, std::int32_t value) {
  return bytes.replace(place, 4, ModelBytes().Int(value).Bytes());
}

class CheckModelFileTest : public testing::Test {
 protected:
  std::string Check(const std::string& bytes, ModelFileType type = kUttGoodnessModel) {
    WriteFile(m_path, bytes);
    return CheckModelFile(m_path.c_str(), type);
  }

  // Expects `bytes` to be refused as a goodness model in these words.
  void ExpectFault(const std::string& bytes, const std::string& fault) {
    EXPECT_EQ(Check(bytes), m_path + " cannot be used as the utterance goodness model: " + fault);
  }

  ~CheckModelFileTest() override { EXPECT_EQ(m_messages.All(), ""); }

  const ScratchFolder m_folder;
  const std::string m_path = m_folder.Path() / "made.model";
  const MessageCapture m_messages;
  const EndProcessTrap m_trap;
};

TEST_F(CheckModelFileTest, EachShippedModelIsFitForItsOwnUseAlone) {
  for (const Shape& model : kShapes) {
    const std::string path =
        std::string(VERAL3_SOURCE_DIR) + "/resources/" + std::string(model.shipped);
    for (const Shape& use : kShapes) {
      const std::string fault = CheckModelFile(path.c_str(), use.type);
      if (&model == &use) {
        EXPECT_EQ(fault, "");
        continue;
      }
      EXPECT_EQ(
          fault,
          path + " cannot be used as the " + use.name + ": it has " + std::to_string(model.inputs) +
              " inputs and " + std::to_string(model.outputs) + " outputs like the " + model.name +
              ", not " + std::to_string(use.inputs) + " inputs and " + std::to_string(use.outputs) +
              " outputs; load it as what it is, or give a file that was made as the " + use.name);
    }
  }
}

TEST_F(CheckModelFileTest, TheReferenceModelsPass) {
  for (const auto& [name, type] :
       {std::pair{"frame_en.bin", kFrameModelEnglish},
        std::pair{"frame_zh.bin", kFrameModelChinese},
        std::pair{"frame_ja.bin", kFrameModelJapanese},
        std::pair{"phon_en.bin", kPhonemeModelEnglish},
        std::pair{"phon_zh.bin", kPhonemeModelChinese},
        std::pair{"phon_ja.bin", kPhonemeModelJapanese}, std::pair{"tone.bin", kToneModelChinese},
        std::pair{"good.bin", kUttGoodnessModel}}) {
    EXPECT_EQ(CheckModelFile(VectorPath(std::string("models/") + name).c_str(), type), "");
  }
}

TEST_F(CheckModelFileTest, WhichActivationsTheLastLayerMayHave) {
  for (const Shape& shape : kShapes) {
    SCOPED_TRACE(shape.name);
    const bool sums = shape.type <= kToneModelChinese;  // frames and tones
    const auto check = [&](char activation) {
      return Check(OneLayer(activation, shape.inputs, shape.outputs), shape.type);
    };
    EXPECT_EQ(check('x'), "");
    if (sums) {
      EXPECT_THAT(check('g'), EndsWith(": its outputs are made by sigmoid, so that they need not "
                                       "sum to 1; train it with softmax in its last layer"));
    } else {
      EXPECT_EQ(check('g'), "");
    }
    const std::string remedy =
        std::string("; train it with softmax in its last layer") + (sums ? "" : ", or sigmoid");
    EXPECT_THAT(check('r'), EndsWith(": its outputs are made by relu, so that they are no "
                                     "probabilities" +
                                     remedy));
    EXPECT_THAT(check('t'), EndsWith(": its outputs are made by tanh, so that they are no "
                                     "probabilities" +
                                     remedy));
  }
  // Dropout behind the last layer changes nothing.
  for (const char last : {'x', 'r'}) {
    const std::string dropout = ModelBytes().Layer('O').Bytes();
    EXPECT_EQ(Check(WithInt(Goodness(last), 4, 3) + dropout).empty(), last == 'x');
  }
}

TEST_F(CheckModelFileTest, PathsAndTypesThatNameNoModel) {
  EXPECT_EQ(CheckModelFile(nullptr, kUttGoodnessModel),
            "no model file was named; give the path of a model file");
  EXPECT_EQ(CheckModelFile((m_path + "x").c_str(), kUttGoodnessModel),
            m_path +
                "x cannot be used as the utterance goodness model: it does not exist; give "
                "the path of a model file");
  EXPECT_THAT(CheckModelFile(m_folder.Path().c_str(), kUttGoodnessModel),
              HasSubstr(": it is not a regular file; "));
  // Opening it would wait for a writer.
  const std::string fifo = m_folder.Path() / "fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_THAT(CheckModelFile(fifo.c_str(), kUttGoodnessModel),
              HasSubstr(": it is not a regular file; "));
  EXPECT_THAT(CheckModelFile((m_path + std::string(5000, 'x')).c_str(), kUttGoodnessModel),
              HasSubstr(": it cannot be opened ("));
  WriteFile(m_path, Goodness());
  for (const int type : {-1, 5, 6, 7, 11, 1000}) {
    EXPECT_EQ(CheckModelFile(m_path.c_str(), static_cast<ModelFileType>(type)),
              m_path + " cannot be loaded as model type " + std::to_string(type) +
                  ", which names no model; give one of ModelFileType");
  }
}

TEST_F(CheckModelFileTest, DamagedFiles) {
  EXPECT_EQ(Check(Goodness()), "");
  ExpectFault("", "it ends before the number of its layers; copy or make the file again");
  ExpectFault("Good morning",
              "it announces 1919905056 layers, more than the file can hold; copy or make the file "
              "again");
  ExpectFault(WithInt(Goodness(), 4, -3), "it announces -3 layers; copy or make the file again");
  ExpectFault(WithInt(Goodness(), 4, 100),
              "it announces 100 layers, more than the file can hold; copy or make the file again");
  ExpectFault(WithInt(Goodness(), 4, 3),
              "it ends in the middle of layer 3; copy or make the file "
              "again");
  std::string bytes = Goodness();
  bytes[kSecondLayer + 4] = 'Q';
  ExpectFault(bytes, "layer 2 is of the unknown kind 'Q' (0x51); copy or make the file again");
  bytes = Goodness();
  bytes[kSecondLayer + 5] = 'q';
  ExpectFault(bytes,
              "layer 2 has the unknown activation code 'q' (0x71); copy or make the file again");
  bytes[kSecondLayer + 5] = '\x07';
  ExpectFault(bytes, "layer 2 has the unknown activation code 0x07; copy or make the file again");
  bytes = Goodness();
  bytes[kSecondLayer + 14] = 'Z';
  ExpectFault(bytes,
              "layer 2 has another byte where a bracket belongs; copy or make the file again");
  bytes = Goodness();
  bytes.back() = '\0';
  ExpectFault(bytes,
              "layer 2 has another byte where a bracket belongs; copy or make the file again");
  ExpectFault(WithInt(Goodness(), kSecondLayer + 6, -3),
              "layer 2 has a negative size; copy or make the file again");
  ExpectFault(WithInt(Goodness(), kSecondLayer + 10, 60000),
              "it ends in the middle of layer 2; copy or make the file again");
  ExpectFault(WithInt(Goodness(), 0, -1),
              "its version is -1, which is how a failure to load looks; give it a version of 0 or "
              "more");
}

TEST_F(CheckModelFileTest, EveryCutIsNoticed) {
  const std::string whole = Goodness();
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_NE(Check(whole.substr(0, size)), "") << size;
  }
  EXPECT_EQ(Check(whole + "and more"), "");
}

TEST_F(CheckModelFileTest, NumbersThatAreNotFinite) {
  constexpr std::size_t kFirstWeight = 8 + 5 + 9 + 1;
  for (const auto& [value, what] :
       {std::pair{kInfinity, "infinite"}, std::pair{-kInfinity, "infinite"},
        std::pair{kNan, "not a number"}}) {
    const auto bits = std::bit_cast<std::int32_t>(value);
    const std::string is = std::string(" that is ") + what + "; train it again";
    ExpectFault(WithInt(Goodness(), kFirstWeight, bits), "layer 1 has a weight" + is);
    ExpectFault(WithInt(Goodness(), kSecondLayer + 15, bits), "layer 2 has a weight" + is);
    ExpectFault(WithInt(Goodness(), Goodness().size() - 5, bits), "layer 2 has a bias" + is);
  }
}

TEST_F(CheckModelFileTest, NumbersWhoseSumsPassADouble) {
  const auto chain = [](int layers, float value, char activation = 'r') {
    ModelBytes bytes;
    bytes.Header(1, layers);
    for (int i = 1; i < layers; ++i) AddDense(bytes, activation, 16, 16, value);
    return AddDense(bytes, 'x', 16, 2, value).Bytes();
  };
  ExpectFault(chain(9, kLargest),
              "its numbers are so large that results may become infinite; train it again");
  EXPECT_EQ(Check(chain(5, kLargest)), "");  // (3.4e38 x 16)^5 x 3.4e38 is less than 1.8e308
  EXPECT_EQ(Check(chain(100, 4.0f)), "");
  for (const char bounded : {'t', 'g', 'x'}) EXPECT_EQ(Check(chain(100, kLargest, bounded)), "");
  // What they would come to.
  const MessageCapture loaded;
  UGClassifier classifier;
  Check(chain(9, kLargest));
  ASSERT_EQ(classifier.LoadFromFile(m_path.c_str()), 1);
  const double features[UGClassifier::kInputs] = {1.0};
  EXPECT_FALSE(std::isfinite(classifier.ClassifyUtteranceGoodness(features)));
}

TEST_F(CheckModelFileTest, LayersThatAreNoChain) {
  ExpectFault(ModelBytes().Header(1, 0).Bytes(), "it has no layers; give a trained network");
  const auto dropouts = [](int count) {
    ModelBytes bytes;
    bytes.Header(1, count + 1);
    AddDense(bytes, 'x', 16, 2);
    for (int i = 0; i < count; ++i) bytes.Layer('O');
    return bytes.Bytes();
  };
  EXPECT_EQ(Check(dropouts(99)), "");
  for (const int count : {100, 20000}) {
    ExpectFault(dropouts(count), "it announces " + std::to_string(count + 1) +
                                     " layers; at most 100 are taken; leave out those that do "
                                     "nothing, such as dropout layers");
  }
  ExpectFault(ModelBytes().Header(1, 1).Layer('O').Bytes(),
              "layer 1 is a dropout layer where a dense layer must be; give a network of dense "
              "layers");
  ExpectFault(AllKindsModel(),
              "layer 1 is a convolution where a dense layer must be; give a network of dense "
              "layers");
  for (const auto& [code, kind] :
       {std::pair{'F', "a flatten layer"}, std::pair{'M', "a max pooling layer"}}) {
    ModelBytes bytes;
    bytes.Header(1, 2);
    AddDense(bytes, 'r', 16, 2).Layer(code).Int(1).Int(1).Int(1).Int(1).Int(1);
    ExpectFault(bytes.Bytes(), std::string("layer 2 is ") + kind +
                                   " where only dense and dropout layers may be; give a network "
                                   "of dense layers");
  }
  for (const int outputs : {3, 5}) {
    ModelBytes bytes;
    bytes.Header(1, 3);
    AddDense(bytes, 'r', 16, outputs).Layer('O');
    ExpectFault(AddDense(bytes, 'x', 4, 2).Bytes(), "layer 3 has 4 inputs where " +
                                                        std::to_string(outputs) +
                                                        " values come to it; make the file again");
  }
  ExpectFault(OneLayer('x', 16, 0), "layer 1 has no outputs; train it again");
  ExpectFault(OneLayer('x', 0, 2), "layer 1 has no inputs; train it again");
}

TEST_F(CheckModelFileTest, ShapesOfNoUseAtAll) {
  for (const auto& [inputs, outputs] : {std::pair{16, 1}, std::pair{16, 3}, std::pair{15, 2},
                                        std::pair{17, 2}, std::pair{195, 2}}) {
    ExpectFault(OneLayer('x', inputs, outputs),
                "it has " + std::to_string(inputs) + " inputs and " + std::to_string(outputs) +
                    " outputs, not 16 inputs and 2 outputs; give a file that was made as the "
                    "utterance goodness model");
  }
  EXPECT_THAT(Check(OneLayer('x', 1, 65536)),
              HasSubstr(": it has 1 inputs and 65536 outputs, not "));
  ExpectFault(OneLayer('x', 1, 65537),
              "layer 1 has 1 inputs and 65537 outputs; at most 65536 are taken; give a smaller "
              "network");
}

// Whatever a damaged file has become: what passes loads, and gives a probability.
TEST_F(CheckModelFileTest, WhatPassesGivesProbabilities) {
  const std::string whole = Goodness();
  int passed = 0;
  for (std::size_t bit = 0; bit < 8 * whole.size(); bit += 3) {  // each of a byte's in turn
    std::string damaged = whole;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
    if (!Check(damaged).empty()) continue;
    ++passed;
    const MessageCapture loaded;
    UGClassifier classifier;
    ASSERT_GE(classifier.LoadFromFile(m_path.c_str()), 0) << bit;
    for (const double feature : {0.0, -1e30, 1e30}) {
      const std::vector<double> features(UGClassifier::kInputs, feature);
      const double probability = classifier.ClassifyUtteranceGoodness(features.data());
      ASSERT_TRUE(probability >= 0.0 && probability <= 1.0) << bit << " " << probability;
    }
    ASSERT_THAT(loaded.StandardError(), testing::Not(HasSubstr("ERROR"))) << bit;
  }
  EXPECT_GT(passed, 400);  // most bits are in the weights
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryCanBeLimited = false;  // sanitizers reserve terabytes
#else
constexpr bool kMemoryCanBeLimited = true;
#endif

// Limits this process to `bytes` of address space more than it has.
void LimitMemory(std::size_t bytes) {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  const rlim_t limit = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + bytes;
  const rlimit both = {limit, limit};
  setrlimit(RLIMIT_AS, &both);
}

// Checks each file as every type in a process of 16 MB more than the tests' own. Gives how many
// files it was out of memory for, or was ended by.
int FilesThatTakeTooMuch(const std::vector<std::string>& paths) {
  const pid_t child = fork();
  if (child == 0) {
    if (kMemoryCanBeLimited) LimitMemory(16u << 20);
    int failed = 0;
    for (const std::string& path : paths) {
      bool out_of_memory = false;
      for (const Shape& shape : kShapes) {
        out_of_memory |= CheckModelFile(path.c_str(), shape.type) == "out of memory";
      }
      failed += out_of_memory ? 1 : 0;
    }
    _exit(std::min(failed, 100));
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Files that announce, or hold, what would take much memory to load or to evaluate.
TEST_F(CheckModelFileTest, MemoryStaysSmallWhateverTheFileSays) {
  std::vector<std::string> files;
  constexpr std::int32_t kHuge = std::numeric_limits<std::int32_t>::max();
  constexpr std::size_t kMegabyte = 1000000;
  for (const std::int32_t size : {kHuge, kHuge / 2, 1 << 24, 65537, 65536, 60000, 250000}) {
    for (const std::int32_t other : {kHuge, 65536, 1, 0}) {
      files.push_back(ModelBytes().Header(1, 1).Layer('D').Char('x').Int(size).Int(other).Bytes());
      files.push_back(ModelBytes().Header(1, 1).Layer('D').Char('x').Int(other).Int(size).Bytes());
      files.push_back(ModelBytes()
                          .Header(1, 1)
                          .Layer('C')
                          .Char('r')
                          .Int(size)
                          .Int(other)
                          .Int(size)
                          .Int(1)
                          .Int(1)
                          .Int(other)
                          .Int(size)
                          .Char('s')
                          .Bytes());
    }
    files.push_back(
        ModelBytes().Header(1, 1).Layer('M').Int(size).Int(1).Int(1).Int(1).Int(1).Bytes());
    files.push_back(ModelBytes().Header(1, 1).Layer('F').Int(size).Int(size).Int(size).Bytes());
    files.push_back(ModelBytes().Header(1, size).Bytes());
  }
  for (std::string& file : files) {
    const char fill = file.size() % 2 == 0 ? '\0' : '[';
    file.resize(kMegabyte, fill);
  }
  files.push_back(OneLayer('x', 16, 14000));
  files.push_back(OneLayer('x', 65000, 2));
  files.push_back(OneLayer('x', 2, 65000));
  ModelBytes dropouts;
  dropouts.Header(1, 190000);
  for (int i = 0; i < 190000; ++i) dropouts.Layer('O');
  files.push_back(dropouts.Bytes());
  ModelBytes wide;
  wide.Header(1, 26);
  for (int i = 0; i < 13; ++i) AddDense(AddDense(wide, 'r', 1, 5000), 'r', 5000, 1);
  files.push_back(wide.Bytes());
  // Random ones that begin well.
  std::mt19937 random(20261121);
  const std::string whole = Goodness();
  for (int round = 0; round < 300; ++round) {
    std::string damaged = whole;
    for (int i = 0; i < 4; ++i) {
      damaged = WithInt(damaged, random() % (whole.size() - 4),
                        static_cast<int>(random()) >> random() % 32);
    }
    files.push_back(damaged + std::string(random() % 2000, 'O'));
  }

  std::vector<std::string> paths;
  for (const std::string& file : files) {
    ASSERT_LE(file.size(), kMegabyte);
    paths.push_back(m_folder.Path() / std::to_string(paths.size()));
    WriteFile(paths.back(), file);
  }
  EXPECT_EQ(FilesThatTakeTooMuch(paths), 0);
}

TEST_F(CheckModelFileTest, NorWithAFileOfAGigabyte) {
  WriteFile(m_path, Goodness());
  std::filesystem::resize_file(m_path, std::uintmax_t{1} << 30);
  EXPECT_EQ(FilesThatTakeTooMuch({m_path}), 0);
  EXPECT_EQ(CheckModelFile(m_path.c_str(), kUttGoodnessModel), "");
  // A layer that the file could hold, if only so many numbers were taken.
  WriteFile(m_path, ModelBytes().Header(1, 1).Layer('D').Char('x').Int(65536).Int(4000).Bytes());
  std::filesystem::resize_file(m_path, std::uintmax_t{3} << 30);
  EXPECT_EQ(FilesThatTakeTooMuch({m_path}), 0);
  EXPECT_THAT(CheckModelFile(m_path.c_str(), kUttGoodnessModel),
              EndsWith(": it has more than 67108864 numbers; give a smaller network"));
}

TEST_F(CheckModelFileTest, MemoryThatRunsOutIsSaid) {
  WriteFile(m_path, OneLayer('x', 2, 65000));
  const pid_t child = fork();
  if (child == 0) {
    if (!kMemoryCanBeLimited) _exit(0);
    // All that the process still has in one piece, so that a layer's sums are not to be had.
    std::vector<void*> taken;
    taken.reserve(100000);
    LimitMemory(0);
    for (std::size_t size = 1u << 20; size >= 1u << 16; size /= 2) {
      while (void* const block = std::malloc(size)) taken.push_back(block);
    }
    const std::string fault = CheckModelFile(m_path.c_str(), kUttGoodnessModel);
    _exit(fault == "out of memory" ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
}  // namespace veral3::test
