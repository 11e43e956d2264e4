#pragma once
// Moving photos to the desktop's trash and back, for `vesperon browse`'s Delete and its Undo.
// Moving goes through GIO's trash (trashItemAtURL), which notes where each file came from;
// restoring moves the file from the trash's files/ folder back to where it was, through GIO,
// and removes its note (the .trashinfo beside files/), as a file manager's Restore does.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

class BrowseTrash {
 public:
  struct Item {
    std::filesystem::path original;  ///< where the file was
    std::filesystem::path inTrash;   ///< where it lies in the trash's files/ folder
  };

  /// Moves the file to the trash; none, with the reason in `error`, when it cannot be.
  static std::optional<Item> trash(const std::filesystem::path& file, std::string* error = nullptr);
  /// Puts the file back where it was; false, with the reason in `error`, when it is gone from the
  /// trash or a file now stands at its old place (which is never overwritten).
  static bool restore(const Item& item, std::string* error = nullptr);
};
