#include <vesperon/metadata/MCTimeZone.h>

#include <vesperon/metadata/MCICUSupport.h>

#include <unicode/simpletz.h>

#include <cstdio>

struct MCTimeZone::Zone {
  std::unique_ptr<icu::TimeZone> zone;
};

MCTimeZone::MCTimeZone(std::shared_ptr<const Zone> zone) : zone_(std::move(zone)) {
  icu::UnicodeString id;
  zone_->zone->getID(id);
  name_ = mc_detail::utf8String(id);
}


MCTimeZone MCTimeZone::defaultTimeZone() {
  return MCTimeZone(std::make_shared<const Zone>(Zone{std::unique_ptr<icu::TimeZone>(icu::TimeZone::createDefault())}));
}

MCTimeZone MCTimeZone::utc() {
  return MCTimeZone(std::make_shared<const Zone>(Zone{std::unique_ptr<icu::TimeZone>(icu::TimeZone::getGMT()->clone())}));
}

std::optional<MCTimeZone> MCTimeZone::create(const std::string& name) {
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(mc_detail::unicodeString(name)));
  if (!zone || *zone == icu::TimeZone::getUnknown()) return std::nullopt;
  return MCTimeZone(std::make_shared<const Zone>(Zone{std::move(zone)}));
}

MCTimeZone MCTimeZone::withSecondsFromGMT(int seconds) {
  const int magnitude = seconds < 0 ? -seconds : seconds;
  char id[32];
  std::snprintf(id, sizeof id, "GMT%c%02d%02d", seconds < 0 ? '-' : '+', magnitude / 3600, magnitude / 60 % 60);
  auto zone = std::make_unique<icu::SimpleTimeZone>(seconds * 1000, icu::UnicodeString(id, -1, US_INV));
  return MCTimeZone(std::make_shared<const Zone>(Zone{std::move(zone)}));
}

int MCTimeZone::secondsFromGMT(MCDate date) const {
  int32_t raw = 0, dst = 0;
  UErrorCode status = U_ZERO_ERROR;
  zone_->zone->getOffset(mc_detail::udateFromDate(date), false, raw, dst, status);
  return U_SUCCESS(status) ? (raw + dst) / 1000 : 0;
}

bool operator==(const MCTimeZone& a, const MCTimeZone& b) {
  return a.zone_ == b.zone_ || *a.zone_->zone == *b.zone_->zone;
}

const icu::TimeZone& mc_detail::ICUAccess::timeZone(const MCTimeZone& zone) { return *zone.zone_->zone; }

std::optional<MCDate> mc_detail::dateFromUDate(UDate milliseconds) {
  return MCDateWithTimeIntervalSince1970(milliseconds / 1000.0);
}

UDate mc_detail::udateFromDate(MCDate date) {
  return static_cast<UDate>(date.time_since_epoch().count()) / 1000.0;
}
