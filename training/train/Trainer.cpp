#include "training/train/Trainer.h"

#include <torch/torch.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <stdexcept>
#include <utility>

#include "training/train/Scaling.h"

namespace veral3::training {
namespace {

using torch::Tensor;

struct Layers {
  std::vector<torch::nn::Linear> linear;

  std::vector<Tensor> Parameters() const {
    std::vector<Tensor> all;
    for (const auto& layer : linear) {
      for (const Tensor& parameter : layer->parameters()) all.push_back(parameter);
    }
    return all;
  }

  // Scores before the softmax. `magnitude`, where given, gains the mean of the hidden activations.
  Tensor Forward(Tensor x, double dropout, Tensor* magnitude) const {
    for (std::size_t i = 0; i < linear.size(); ++i) {
      torch::nn::Linear layer = linear[i];  // shares the weights; libtorch's forward is not const
      x = layer->forward(x);
      if (i + 1 == linear.size()) break;
      x = torch::relu(x);
      if (magnitude != nullptr) *magnitude = *magnitude + x.mean();
      if (dropout > 0.0) x = torch::dropout(x, dropout, /*train=*/true);
    }
    return x;
  }
};

Layers LayersOf(const Network& network) {
  Layers layers;
  for (const DenseLayer& layer : network.layers) {
    torch::nn::Linear linear(layer.inputs, layer.outputs);
    const torch::NoGradGuard no_grad;
    auto weights =
        torch::from_blob(const_cast<float*>(layer.weights.data()), {layer.inputs, layer.outputs});
    linear->weight.copy_(weights.t());
    linear->bias.copy_(torch::from_blob(const_cast<float*>(layer.bias.data()), {layer.outputs}));
    layers.linear.push_back(linear);
  }
  return layers;
}

void StoreInto(Network& network, const Layers& layers) {
  for (std::size_t i = 0; i < network.layers.size(); ++i) {
    const Tensor weights = layers.linear[i]->weight.detach().t().contiguous();
    const Tensor bias = layers.linear[i]->bias.detach().contiguous();
    network.layers[i].weights.assign(weights.data_ptr<float>(),
                                     weights.data_ptr<float>() + weights.numel());
    network.layers[i].bias.assign(bias.data_ptr<float>(), bias.data_ptr<float>() + bias.numel());
  }
}

// A network of random weights whose scaling fits the source.
Network FreshNetwork(const TrainOptions& options, const ExampleSource& source, Random& random) {
  Network network;
  Scaling scaling = MeasureScaling(source, random);
  network.input_mean = std::move(scaling.mean);
  network.input_deviation = std::move(scaling.deviation);
  std::vector<int> sizes = options.hidden;
  sizes.insert(sizes.begin(), source.NumInputs());
  sizes.push_back(source.NumClasses());
  for (std::size_t i = 0; i + 1 < sizes.size(); ++i) {
    network.layers.push_back(RandomLayer(sizes[i], sizes[i + 1], random));
  }
  return network;
}

// What the loss looks up by an example's class: the columns that its head does not have, and the
// smoothed probabilities that are wanted of the others.
struct ClassTables {
  Tensor closed;  // classes x columns: a large negative number in the columns of other heads
  Tensor wanted;  // classes x columns
};

ClassTables MakeTables(const TrainOptions& options, int columns) {
  constexpr float kClosed = -1e9f;
  const std::vector<Head> heads =
      options.heads.empty() ? std::vector<Head>{{0, columns}} : options.heads;
  ClassTables tables{torch::full({columns, columns}, kClosed), torch::zeros({columns, columns})};
  for (const Head& head : heads) {
    const auto smooth = static_cast<float>(options.smoothing / (head.end - head.begin));
    for (int c = head.begin; c < head.end; ++c) {
      tables.closed[c].slice(0, head.begin, head.end).fill_(0.0f);
      tables.wanted[c].slice(0, head.begin, head.end).fill_(smooth);
      tables.wanted[c][c] += static_cast<float>(1.0 - options.smoothing);
    }
  }
  return tables;
}

// The weights that an example's own stand for, smoothed over all columns.
Tensor SmoothedWeights(const Tensor& weights, double smoothing) {
  return weights * (1.0 - smoothing) + smoothing / static_cast<double>(weights.size(1));
}

double RateAt(double progress, double highest) {
  constexpr double kRise = 0.2;
  if (progress < kRise) return highest * (0.1 + 0.9 * progress / kRise);
  const double fall = (progress - kRise) / (1.0 - kRise);
  return highest * (0.001 + 0.999 * 0.5 * (1.0 + std::cos(std::numbers::pi * fall)));
}

void Scale(const Network& network, std::span<float> rows) {
  const std::size_t inputs = network.input_mean.size();
  std::vector<float> factor(inputs);
  for (std::size_t i = 0; i < inputs; ++i) factor[i] = 1.0f / network.input_deviation[i];
  for (std::size_t row = 0; row < rows.size(); row += inputs) {
    for (std::size_t i = 0; i < inputs; ++i) {
      rows[row + i] = (rows[row + i] - network.input_mean[i]) * factor[i];
    }
  }
}

// A network ready to classify rows that are not scaled.
class Classifier {
 public:
  explicit Classifier(const Network& network)
      : m_layers(LayersOf(FoldScaling(network))), m_inputs(network.NumInputs()) {}

  Tensor Probabilities(std::span<const float> rows) const {
    const torch::NoGradGuard no_grad;
    const auto count = static_cast<std::int64_t>(rows.size()) / m_inputs;
    const Tensor x = torch::from_blob(const_cast<float*>(rows.data()), {count, m_inputs});
    return torch::softmax(m_layers.Forward(x, 0.0, nullptr), 1);
  }

 private:
  Layers m_layers;
  std::int64_t m_inputs;
};

std::vector<Classifier> TeachersOf(const TrainOptions& options, const Network& network) {
  std::vector<Classifier> teachers;
  for (const Network& teacher : options.teachers) {
    if (teacher.NumInputs() != network.NumInputs() ||
        teacher.NumOutputs() != network.NumOutputs()) {
      throw std::runtime_error("a teacher has other inputs or classes");
    }
    if (!options.heads.empty()) throw std::runtime_error("several heads have no teachers");
    teachers.emplace_back(teacher);
  }
  if (options.teaching > 0.0 && teachers.empty()) throw std::runtime_error("there is no teacher");
  return teachers;
}

// The probabilities that are wanted of a batch: those that are known, mixed with what the teachers
// say on average.
Tensor WithTeachers(const Tensor& known, double teaching, std::span<const Classifier> teachers,
                    std::span<const float> rows) {
  if (teaching == 0.0) return known;
  Tensor wanted = known * (1.0 - teaching);
  const double each = teaching / static_cast<double>(teachers.size());
  for (const Classifier& teacher : teachers) wanted = wanted + teacher.Probabilities(rows) * each;
  return wanted;
}

Deck DeckOf(const TrainOptions& options, std::size_t num_examples) {
  std::vector<ExampleGroup> groups = options.groups;
  if (groups.empty()) groups.push_back({0, static_cast<std::uint32_t>(num_examples), 1.0});
  const bool sized = !options.groups.empty() && options.epoch_size > 0;
  return {groups, sized ? options.epoch_size : num_examples};
}

}  // namespace

Network Train(const TrainOptions& options, ExampleSource& source,
              const std::optional<Network>& start) {
  torch::set_num_threads(options.threads);
  torch::manual_seed(options.seed);
  Random random(MixSeed(options.seed, 77));
  source.BeginEpoch(random);
  Network network = start ? *start : FreshNetwork(options, source, random);
  if (network.NumInputs() != source.NumInputs() || network.NumOutputs() != source.NumClasses()) {
    throw std::runtime_error("the network to start from has other inputs or classes");
  }
  if (source.HasWeights() && !options.heads.empty()) {
    throw std::runtime_error("weights of classes and columns by language exclude each other");
  }
  Layers layers = LayersOf(network);
  torch::optim::Adam adam(layers.Parameters(), torch::optim::AdamOptions(options.rate));

  const ClassTables tables = MakeTables(options, network.NumOutputs());
  const std::vector<Classifier> teachers = TeachersOf(options, network);
  Deck deck = DeckOf(options, source.NumExamples());
  std::vector<std::uint32_t> order = deck.Deal(random);
  const auto batch = std::min(static_cast<std::size_t>(options.batch), order.size());
  const std::size_t steps_an_epoch = order.size() / batch;
  const auto inputs = static_cast<std::size_t>(source.NumInputs());
  const Tensor rows = torch::empty({static_cast<std::int64_t>(batch), source.NumInputs()});
  const Tensor classes = torch::empty({static_cast<std::int64_t>(batch)}, torch::kInt64);
  const Tensor weights = torch::empty({static_cast<std::int64_t>(batch), source.NumClasses()});
  const std::span<float> weight_values(weights.data_ptr<float>(),
                                       static_cast<std::size_t>(weights.numel()));
  const std::span<float> row_values(rows.data_ptr<float>(), batch * inputs);
  const std::span<std::int64_t> class_values(classes.data_ptr<std::int64_t>(), batch);

  const auto begin = std::chrono::steady_clock::now();
  const auto seconds = [&begin] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  const auto steps = static_cast<double>(steps_an_epoch) * options.epochs;
  double step = 0.0;
  for (int epoch = 0; epoch < options.epochs; ++epoch) {
    if (epoch > 0) {
      source.BeginEpoch(random);
      order = deck.Deal(random);
    }
    double loss_sum = 0.0;
    double right = 0.0;
    for (std::size_t k = 0; k < steps_an_epoch; ++k, step += 1.0) {
      const double rate = RateAt(step / steps, options.rate);
      for (auto& group : adam.param_groups()) {
        static_cast<torch::optim::AdamOptions&>(group.options()).lr(rate);
      }
      source.Fill(std::span(order).subspan(k * batch, batch), row_values, class_values);
      if (source.HasWeights()) {
        source.FillWeights(std::span(order).subspan(k * batch, batch), weight_values);
      }
      const Tensor known = source.HasWeights() ? SmoothedWeights(weights, options.smoothing)
                                               : tables.wanted.index_select(0, classes);
      const Tensor wanted = WithTeachers(known, options.teaching, teachers, row_values);
      Scale(network, row_values);
      Tensor magnitude = torch::zeros({});
      const Tensor scores = layers.Forward(rows, options.dropout, &magnitude);
      const Tensor open = scores + tables.closed.index_select(0, classes);
      Tensor loss = -(wanted * torch::log_softmax(open, 1)).sum(1).mean();
      loss_sum += loss.item<double>();
      right += open.detach().argmax(1).eq(classes).sum().item<double>();
      if (options.sparsity > 0.0) loss = loss + options.sparsity * magnitude;
      adam.zero_grad();
      loss.backward();
      adam.step();
    }
    const auto seen = static_cast<double>(steps_an_epoch * batch);
    std::printf("epoch %d of %d: loss %.4f, classes right %.4f, %.0f s\n", epoch + 1,
                options.epochs, loss_sum / static_cast<double>(steps_an_epoch), right / seen,
                seconds());
    std::fflush(stdout);
  }
  StoreInto(network, layers);
  return network;
}

std::vector<float> Classify(const Network& network, std::span<const float> inputs) {
  const Tensor scores = Classifier(network).Probabilities(inputs).contiguous();
  return {scores.data_ptr<float>(), scores.data_ptr<float>() + scores.numel()};
}

}  // namespace veral3::training
