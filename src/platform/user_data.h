#pragma once

#include <filesystem>

// The folder of the user's own data, which need not exist: beside the settings file that SORVANE_SETTINGS names, else
// the desktop's place for data of programs.
std::filesystem::path user_data_folder();
