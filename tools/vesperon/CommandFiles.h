#pragma once
// The file work that several subcommands share: whole files in and out, and the nested property
// dictionary of a JSON file. Each failure prints one line on stderr naming the command and file.

#include <vesperon/core/MCValueJSON.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

/// The bytes of the file, or none when it cannot be read.
inline std::optional<MCData> readFileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  MCData bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) return std::nullopt;
  return bytes;
}

/// The JSON object of the file as a property dictionary; none, with a line on stderr, otherwise.
inline std::optional<MCDictionary> readPropertyDictionary(const char* command, const std::string& path) {
  std::ifstream in(path);
  const nlohmann::json json = in ? nlohmann::json::parse(in, nullptr, false) : nlohmann::json();
  if (!json.is_object()) {
    std::fprintf(stderr, "vesperon %s: %s does not hold a JSON object\n", command, path.c_str());
    return std::nullopt;
  }
  return *MCValueFromJSON(json).dictionary();
}

/// Writes the bytes over the file; false, with a line on stderr, when that fails.
inline bool writeFileBytes(const char* command, const std::string& path, const MCData& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (out.flush()) return true;
  std::fprintf(stderr, "vesperon %s: cannot write %s\n", command, path.c_str());
  return false;
}
