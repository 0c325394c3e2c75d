#pragma once

#include <CLI/App.hpp>

#include "training/train/Trainer.h"

namespace veral3::training {

// The options of the training itself, which every program that trains has. `train` must live as
// long as `app`.
inline void AddTrainingOptions(CLI::App& app, TrainOptions& train) {
  app.add_option("--hidden", train.hidden, "sizes of the hidden layers");
  app.add_option("--batch", train.batch, "examples a step");
  app.add_option("--epochs", train.epochs, "rounds through the examples");
  app.add_option("--rate", train.rate, "highest learning rate");
  app.add_option("--dropout", train.dropout, "share of hidden values left out");
  app.add_option("--smoothing", train.smoothing, "label smoothing");
  app.add_option("--sparsity", train.sparsity, "weight of the hidden activations' mean");
  app.add_option("--seed", train.seed, "a different one, different weights and order");
  app.add_option("--threads", train.threads, "threads of libtorch");
}

}  // namespace veral3::training
