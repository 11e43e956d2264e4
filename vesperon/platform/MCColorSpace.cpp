#include <vesperon/platform/MCColorSpace.h>

std::shared_ptr<const MCColorSpace> MCColorSpace::sRGB() {
  static const auto space = std::make_shared<const MCColorSpace>("sRGB", Model::RGB);
  return space;
}
std::shared_ptr<const MCColorSpace> MCColorSpace::linearSRGB() {
  static const auto space = std::make_shared<const MCColorSpace>("Linear sRGB", Model::RGB);
  return space;
}
std::shared_ptr<const MCColorSpace> MCColorSpace::genericGrayGamma2_2() {
  static const auto space = std::make_shared<const MCColorSpace>("Generic Gray Gamma 2.2", Model::Gray);
  return space;
}
std::shared_ptr<const MCColorSpace> MCColorSpace::linearGray() {
  static const auto space = std::make_shared<const MCColorSpace>("Linear Gray", Model::Gray);
  return space;
}
std::shared_ptr<const MCColorSpace> MCColorSpace::createWithICCData(std::vector<uint8_t> icc, Model model) {
  if (icc.empty()) return nullptr;
  return std::make_shared<const MCColorSpace>("ICC", model, std::move(icc));
}
