#pragma once
// MCUTType: one uniform type identifier as a shared, interned object — its description and
// filename extensions, and conformance to other types.
//
// Every MCUTType comes from one process-wide container, so an identifier has exactly one object
// (looked up and stored under one lock). `isAvailable` means whatever a client makes of it;
// `allowedTypeIdentifiers` collects the types marked available.

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

class MCUTType {
 public:
  /// A shared, interned type.
  using Ref = std::shared_ptr<const MCUTType>;

  /// The process-wide container from identifier to type, created on first use, never emptied.
  /// The answer is a snapshot taken under the container's lock.
  static std::unordered_map<std::string, Ref> typesContainer();
  /// The interned type, made and stored if it is new.
  static Ref typeWithIdentifier(const std::string& identifier);
  /// The type of the file, by its extension as the file system gives it; none when the file
  /// cannot be typed (with a line to the file log of MCLog::sdkFileSystem when writing to file).
  static Ref typeForURL(const std::filesystem::path& url);
  /// The preferred type for a filename extension (conforming to "public.data"), or none.
  static Ref typeForExtension(const std::string& extension);
  /// The identifiers of the types in the container that are marked available.
  static std::set<std::string> allowedTypeIdentifiers();
  /// The preferred filename extension of the identifier's type, or none.
  static std::optional<std::string> preferredExtensionForIdentifier(const std::optional<std::string>& identifier);

  /// The type of `identifier`, its description and extensions looked up.
  explicit MCUTType(std::string identifier);
  MCUTType(const MCUTType&) = delete;
  MCUTType& operator=(const MCUTType&) = delete;

  /// Whether some codec reads the type now.
  bool isAvailable() const { return available_.load(); }
  /// Set by the codec manager as codecs come and go (any thread).
  void setIsAvailable(bool available) const { available_.store(available); }
  /// The identifier ("public.jpeg").
  const std::string& typeIdentifier() const { return typeIdentifier_; }
  /// What the type is called; none when unknown.
  const std::optional<std::string>& typeDescription() const { return typeDescription_; }
  /// Its filename extensions, lower case, the preferred first.
  const std::vector<std::string>& filenameExtensions() const { return filenameExtensions_; }
  /// The preferred filename extension; none when it has none.
  const std::optional<std::string>& preferredFilenameExtension() const { return preferredFilenameExtension_; }

  /// Whether this type is `type` or conforms to it.
  bool comformsToType(const MCUTType& type) const;
  /// Whether this type is the type of `identifier` or conforms to it.
  bool comformsToIdentifier(const std::string& identifier) const;
  /// The description (or the identifier), then " (jpeg, jpg, jpe)" when there are extensions.
  std::string description() const;
  /// A hash of the identifier.
  std::size_t hash() const { return std::hash<std::string>{}(typeIdentifier_); }

  /// Same object, or identifiers that name the same type.
  friend bool operator==(const MCUTType& a, const MCUTType& b);

 private:
  // Marked by clients on the shared object; the only thing about a type that changes.
  mutable std::atomic<bool> available_{false};
  std::string typeIdentifier_;
  std::optional<std::string> typeDescription_;
  std::vector<std::string> filenameExtensions_;
  std::optional<std::string> preferredFilenameExtension_;
};
