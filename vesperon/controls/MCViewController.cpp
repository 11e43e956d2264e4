#include <vesperon/controls/MCViewController.h>

#include <cxxabi.h>

#include <cstdlib>
#include <typeinfo>

std::string MCViewController::nibName() const {
  // The dynamic class's own name, demangled.
  int status = 0;
  char* name = abi::__cxa_demangle(typeid(*this).name(), nullptr, nullptr, &status);
  std::string result = status == 0 && name ? name : typeid(*this).name();
  std::free(name);
  return result;
}

void MCViewController::viewDidLoad() {
  MCViewControllerBase::viewDidLoad();
  if (loaded_) return;
  loaded_ = true;
  viewControllerDidLoad();
}
