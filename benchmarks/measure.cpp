#include "benchmarks/measure.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

double seconds_of(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> samples) {
  std::sort(samples.begin(), samples.end());
  const std::size_t middle = samples.size() / 2;
  return samples.size() % 2 == 1 ? samples[middle] : (samples[middle - 1] + samples[middle]) / 2;
}

std::vector<double> median_seconds(const std::vector<std::function<void()>>& rivals, int rounds,
                                   const std::function<void()>& before_each) {
  std::vector<std::vector<double>> samples(rivals.size());
  for (int round = -1; round < rounds; ++round) {
    for (std::size_t i = 0; i < rivals.size(); ++i) {
      if (before_each) before_each();
      const double seconds = seconds_of(rivals[i]);
      if (round >= 0) samples[i].push_back(seconds);
    }
  }
  std::vector<double> medians;
  for (const auto& each : samples) medians.push_back(median(each));
  return medians;
}

void print_table_head() { fmt::print("| what | figure | target |\n|---|---|---|\n"); }

void print_row(const std::string& what, const std::string& figure, const std::string& target) {
  fmt::print("| {} | {} | {} |\n", what, figure, target);
  std::fflush(stdout);
}

void give_up(const std::string& why) {
  fmt::print(stderr, "{}\n", why);
  std::exit(1);
}
