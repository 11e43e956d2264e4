#pragma once
// MCTimeZone: a named time zone with its rules (ICU's zone database), a value type.
//
// Two zones are equal when they have the same name and the same rules.

#include <vesperon/metadata/MCDate.h>

#include <memory>
#include <optional>
#include <string>

namespace mc_detail {
struct ICUAccess;
}

class MCTimeZone {
 public:
  /// The process's local zone, as the TZ variable or /etc/localtime name it.
  static MCTimeZone defaultTimeZone();
  /// Coordinated Universal Time, named "UTC".
  static MCTimeZone utc();
  /// A zone by its database name ("Europe/Berlin") or as "GMT+02:00"; none for an unknown name.
  static std::optional<MCTimeZone> create(const std::string& name);
  /// A fixed offset east of Greenwich, with no daylight saving time.
  static MCTimeZone withSecondsFromGMT(int seconds);

  /// The zone's name ("Europe/Paris").
  const std::string& name() const { return name_; }
  /// The zone's offset from UTC at `date`, daylight saving time included.
  int secondsFromGMT(MCDate date) const;

  friend bool operator==(const MCTimeZone& a, const MCTimeZone& b);

 private:
  friend struct mc_detail::ICUAccess;
  struct Zone;
  explicit MCTimeZone(std::shared_ptr<const Zone> zone);

  std::shared_ptr<const Zone> zone_;
  std::string name_;
};
