#pragma once

#include <functional>
#include <string>
#include <vector>

// Seconds that one call takes, on the machine's steady clock.
double seconds_of(const std::function<void()>& work);

double median(std::vector<double> samples);

// Runs the rivals in turn, `rounds` times each after one warm-up round that is not counted, so that a slow moment of
// the machine hits all alike; the median seconds of each. What runs before each is not counted.
std::vector<double> median_seconds(const std::vector<std::function<void()>>& rivals, int rounds,
                                   const std::function<void()>& before_each = {});

// The figures' table. `target` is what the figure is meant to be, such as ">= 0.97".
void print_table_head();
void print_row(const std::string& what, const std::string& figure, const std::string& target);

// Tells why on standard error and ends the program with status 1: a figure that was not measured is not printed.
[[noreturn]] void give_up(const std::string& why);
