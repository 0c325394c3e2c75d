#pragma once

#include <CLI/CLI.hpp>

#include "training/engine/Engine.h"

namespace veral3::training {

// The options by which a program is told which models to measure.
inline void AddEngineOptions(CLI::App& app, EngineFiles& files) {
  app.add_option("--resources", files.resources, "folder of dictionaries and models");
  app.add_option("--frame-model", files.frame_model, "in place of the folder's");
  app.add_option("--phoneme-model", files.phoneme_model, "in place of the folder's");
  if (files.goodness) {
    app.add_option("--goodness-model", files.goodness_model, "in place of the folder's");
  }
}

}  // namespace veral3::training
