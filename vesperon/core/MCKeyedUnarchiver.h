#pragma once
// MCKeyedUnarchiver: reads the archives of MCKeyedArchiver (format described there).

#include <vesperon/core/MCValue.h>

#include <optional>

class MCKeyedUnarchiver {
 public:
  /// `unarchivedRootObject:`: the value of an archive. Bytes that are not CBOR log "Failed to
  /// decode root object: <reason>"; CBOR that is not an archive of ours (wrong header, version or
  /// tag) logs "Failed to decode root object, error: <reason>". Both answer none, on the generic
  /// log; nothing raises.
  static std::optional<MCValue> unarchivedRootObject(const MCData& data);
};
