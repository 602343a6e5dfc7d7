#pragma once

#include <string>

// Writes a file whole, through a temporary file and a rename: after a failure the old file is as it was. False with the
// system's reason.
bool write_whole_file(const std::string& path, const std::string& bytes, std::string& why);
