#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "AllocationFaults.h"
#include "common/LanguageType.h"
#include "recognition/ModelFileType.h"

// Operations of the interface that a test lets run out of memory.
namespace veral3::test {

// One run of an operation, on objects of its own.
struct Trial {
  // The operation, and nothing else that allocates; may be repeated. Negative: it refused.
  std::function<int()> act;

  // Everything that can be read afterwards.
  std::function<std::string()> read;

  // What can be read after a refusal; empty where anything goes.
  std::string after_refusal;
};

struct Operation {
  std::string name;
  std::function<Trial()> prepare;

  // Filled by Measure.
  std::string expected = {};  // what a run with memory enough reads
  long allocations = 0;       // that it asks for
};

// Runs the operation with memory enough, twice: what the process keeps for good is there then.
void Measure(Operation& operation);

// Runs it with the `n`-th allocation failing, then again with memory enough. Expects a refusal
// that is said in a message, or what a run without failure reads; that the second run reads that;
// and that nothing is left over. Returns whether all of it held.
bool ExpectSound(const Operation& operation, long n, Fault fault);

// Every n, with one failure and with all after it failing.
void ExpectSoundThroughout(std::vector<Operation> operations);

// `count` places spread evenly over the allocations of all operations together, with one failure
// and with all after it failing in turn.
void ExpectSoundAtPlaces(std::vector<Operation> operations, long count);

// A language with two recordings: what the operations work on.
struct Material {
  LanguageType language;
  std::vector<std::string> sentences;
  std::vector<std::int16_t> learner, tutor;
};

// That of tests/vectors/chain.
Material ChainMaterial(LanguageType language);

// Making objects, sentences, alignment, analysis, grading, record, annotation, copies, assignments,
// exports and reports. The dictionaries and models of the language are loaded.
std::vector<Operation> SessionOperations(const Material& material);

// Dictionaries in a folder (whose name ends with its separator) and models.
struct Resources {
  std::string folder;
  std::vector<std::pair<std::string, ModelFileType>> models;  // paths
};
Resources SmallResources();    // those of tests/vectors
Resources ShippedResources();  // those of resources/

void Load(const Resources& resources);

// Loading each of them. Leaves them loaded.
std::vector<Operation> LoadOperations(const Resources& resources);

}  // namespace veral3::test
