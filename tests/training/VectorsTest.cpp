#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "support/Vectors.h"
#include "training/features/VectorFile.h"
#include "training/train/VectorSource.h"

namespace veral3::training {
namespace {

class Vectors : public testing::Test {
 protected:
  std::filesystem::path Write(const char* name, int inputs, int classes, int examples) {
    const std::filesystem::path path = m_folder.Path() / name;
    VectorWriter writer(path, inputs, classes);
    for (int i = 0; i < examples; ++i) {
      writer.Write(std::vector<float>(static_cast<std::size_t>(inputs), static_cast<float>(i)),
                   i % classes);
    }
    writer.Close();
    return path;
  }

  test::ScratchFolder m_folder;
};

TEST_F(Vectors, ComeBackAsTheyWereWritten) {
  const VectorFile file(Write("a.vectors", 3, 4, 6));
  EXPECT_EQ(file.NumInputs(), 3);
  EXPECT_EQ(file.NumClasses(), 4);
  ASSERT_EQ(file.NumExamples(), 6U);
  EXPECT_EQ(file.Row(5)[2], 5.0F);
  EXPECT_EQ(file.Class(5), 1);
  EXPECT_EQ(VectorFile(Write("none.vectors", 3, 4, 0)).NumExamples(), 0U);
}

TEST_F(Vectors, AnExampleThatDoesNotFitIsRefused) {
  VectorWriter writer(m_folder.Path() / "a.vectors", 2, 2);
  const std::array<float, 3> row{};
  EXPECT_THROW(writer.Write(row, 0), std::invalid_argument);
  EXPECT_THROW(writer.Write(std::span(row).first(2), 2), std::invalid_argument);
  EXPECT_THROW(writer.Write(std::span(row).first(2), -1), std::invalid_argument);
  EXPECT_THROW(VectorWriter(m_folder.Path() / "b.vectors", 0, 2), std::invalid_argument);
  EXPECT_THROW(VectorWriter(m_folder.Path() / "b.vectors", 2, 257), std::invalid_argument);
}

TEST_F(Vectors, AFileHasItsNameOnlyWhenItIsWhole) {
  const std::filesystem::path path = m_folder.Path() / "a.vectors";
  VectorWriter writer(path, 1, 1);
  EXPECT_FALSE(std::filesystem::exists(path));
  writer.Close();
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(Vectors, DamagedFilesAreRefused) {
  EXPECT_THROW(VectorFile(m_folder.Path() / "missing"), std::runtime_error);
  const std::filesystem::path path = Write("a.vectors", 3, 4, 6);
  std::filesystem::resize_file(path, std::filesystem::file_size(path) - 2);
  EXPECT_THROW(VectorFile{path}, std::runtime_error);
  std::filesystem::resize_file(path, 10);
  EXPECT_THROW(VectorFile{path}, std::runtime_error);
  const std::filesystem::path other = Write("b.vectors", 1, 2, 1);
  {
    std::fstream file(other, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(-1, std::ios::end);
    file.put(2);  // a class that the file does not have
  }
  EXPECT_THROW(VectorFile{other}, std::runtime_error);
}

TEST_F(Vectors, ASourceGoesThroughAllFiles) {
  std::vector<VectorFile> files;
  files.emplace_back(Write("a.vectors", 2, 3, 4));
  files.emplace_back(Write("b.vectors", 2, 3, 5));
  VectorSource source(files);
  EXPECT_EQ(source.NumExamples(), 9U);
  EXPECT_EQ(source.NumInputs(), 2);
  EXPECT_EQ(source.NumClasses(), 3);
  std::vector<float> inputs(4);
  std::vector<std::int64_t> classes(2);
  source.Fill(std::array<std::uint32_t, 2>{3, 8}, inputs, classes);
  EXPECT_EQ(inputs, (std::vector<float>{3, 3, 4, 4}));
  EXPECT_EQ(classes, (std::vector<std::int64_t>{0, 1}));
}

TEST_F(Vectors, FilesOfDifferentShapesDoNotMix) {
  std::vector<VectorFile> files;
  EXPECT_THROW(VectorSource{files}, std::runtime_error);
  files.emplace_back(Write("a.vectors", 2, 3, 1));
  files.emplace_back(Write("b.vectors", 3, 3, 1));
  EXPECT_THROW(VectorSource{files}, std::runtime_error);
}

}  // namespace
}  // namespace veral3::training
