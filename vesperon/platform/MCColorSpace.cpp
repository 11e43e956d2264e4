#include <vesperon/platform/MCColorSpace.h>

#include <lcms2.h>

namespace {

cmsHPROFILE createSRGBProfile() { return cmsCreate_sRGBProfile(); }

cmsHPROFILE createLinearSRGBProfile() {
  cmsCIExyY white;
  cmsWhitePointFromTemp(&white, 6504);
  // The sRGB primaries, as cmsCreate_sRGBProfile uses them.
  cmsCIExyYTRIPLE primaries = {{0.6400, 0.3300, 1.0}, {0.3000, 0.6000, 1.0}, {0.1500, 0.0600, 1.0}};
  cmsToneCurve* linear = cmsBuildGamma(nullptr, 1.0);
  cmsToneCurve* curves[3] = {linear, linear, linear};
  cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
  cmsFreeToneCurve(linear);
  return profile;
}

cmsHPROFILE createGrayProfile(double gamma) {
  cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
  cmsHPROFILE profile = cmsCreateGrayProfile(cmsD50_xyY(), curve);
  cmsFreeToneCurve(curve);
  return profile;
}

std::vector<uint8_t> serialise(cmsHPROFILE profile) {
  cmsUInt32Number length = 0;
  if (!profile || !cmsSaveProfileToMem(profile, nullptr, &length) || length == 0) return {};
  std::vector<uint8_t> bytes(length);
  if (!cmsSaveProfileToMem(profile, bytes.data(), &length)) return {};
  bytes.resize(length);
  return bytes;
}

bool modelOfProfile(cmsHPROFILE profile, MCColorSpace::Model& model) {
  switch (cmsGetColorSpace(profile)) {
    case cmsSigGrayData: model = MCColorSpace::Model::Gray; return true;
    case cmsSigRgbData: model = MCColorSpace::Model::RGB; return true;
    case cmsSigCmykData: model = MCColorSpace::Model::CMYK; return true;
    default: return false;
  }
}

}  // namespace

MCColorSpace::MCColorSpace(std::string name, Model model, void* profile)
    : name_(std::move(name)), model_(model), profile_(profile) {
  icc_ = serialise(profile_);
}

MCColorSpace::MCColorSpace(std::string name, Model model, std::vector<uint8_t> icc)
    : name_(std::move(name)), model_(model), icc_(std::move(icc)) {
  if (!icc_.empty()) {
    cmsHPROFILE profile = cmsOpenProfileFromMem(icc_.data(), cmsUInt32Number(icc_.size()));
    Model found;
    if (profile && modelOfProfile(profile, found) && found == model_) {
      profile_ = profile;
      return;
    }
    if (profile) cmsCloseProfile(profile);
  }
  switch (model_) {
    case Model::RGB: profile_ = createSRGBProfile(); break;
    case Model::Gray: profile_ = createGrayProfile(2.2); break;
    case Model::CMYK: break;  // no characterisation to fall back on: conversions from it fail
  }
}

MCColorSpace::~MCColorSpace() {
  if (profile_) cmsCloseProfile(profile_);
}

bool MCColorSpace::isEquivalent(const MCColorSpace& other) const {
  return this == &other || (model_ == other.model_ && !icc_.empty() && icc_ == other.icc_);
}

std::shared_ptr<const MCColorSpace> MCColorSpace::sRGB() {
  static const std::shared_ptr<const MCColorSpace> space(
      new MCColorSpace("sRGB", Model::RGB, createSRGBProfile()));
  return space;
}

std::shared_ptr<const MCColorSpace> MCColorSpace::linearSRGB() {
  static const std::shared_ptr<const MCColorSpace> space(
      new MCColorSpace("Linear sRGB", Model::RGB, createLinearSRGBProfile()));
  return space;
}

std::shared_ptr<const MCColorSpace> MCColorSpace::genericGrayGamma2_2() {
  static const std::shared_ptr<const MCColorSpace> space(
      new MCColorSpace("Generic Gray Gamma 2.2", Model::Gray, createGrayProfile(2.2)));
  return space;
}

std::shared_ptr<const MCColorSpace> MCColorSpace::linearGray() {
  static const std::shared_ptr<const MCColorSpace> space(
      new MCColorSpace("Linear Gray", Model::Gray, createGrayProfile(1.0)));
  return space;
}

std::shared_ptr<const MCColorSpace> MCColorSpace::createWithICCData(std::vector<uint8_t> icc) {
  if (icc.empty()) return nullptr;
  cmsHPROFILE profile = cmsOpenProfileFromMem(icc.data(), cmsUInt32Number(icc.size()));
  if (!profile) return nullptr;
  Model model;
  const bool known = modelOfProfile(profile, model);
  cmsCloseProfile(profile);
  if (!known) return nullptr;
  return std::make_shared<const MCColorSpace>("ICC", model, std::move(icc));
}

std::shared_ptr<const MCColorSpace> MCColorSpace::createWithICCData(std::vector<uint8_t> icc, Model model) {
  auto space = createWithICCData(std::move(icc));
  if (!space || space->model() != model) return nullptr;
  return space;
}
