#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "recorder/Windows.h"

namespace kestrune::test {

[[nodiscard]] inline std::string_view NameOf(recorder::WindowName name) {
  using recorder::WindowName;
  switch (name) {
    case WindowName::Channels:
      return "channels";
    case WindowName::Log:
      return "log";
    case WindowName::Schedule:
      return "schedule";
    case WindowName::RestrictList:
      return "lists";
    case WindowName::KestruneNow:
      return "now";
    case WindowName::Presets:
      return "presets";
    case WindowName::Config:
      return "config";
    case WindowName::Mixer:
      return "mixer";
    case WindowName::Report:
      return "report";
    case WindowName::Shelf:
      return "shelf";
  }
  return "?";
}

/// Keeps what was asked of it, as "show log", "close log", "hide log" or "reveal log", and believes it.
class ToldWindows final : public recorder::Windows {
 public:
  void Show(recorder::WindowName name) override {
    Loaded[name] = true;
    Tell("show ", name);
  }
  void Close(recorder::WindowName name) override {
    Loaded[name] = false;
    Tell("close ", name);
  }
  void SetVisible(recorder::WindowName name, bool visible) override {
    Tell(visible ? "reveal " : "hide ", name);
  }
  [[nodiscard]] bool IsLoaded(recorder::WindowName name) const override {
    const auto place = Loaded.find(name);
    return place != Loaded.end() && place->second;
  }

  std::map<recorder::WindowName, bool> Loaded;
  std::vector<std::string> Told;

 private:
  void Tell(std::string_view what, recorder::WindowName name) {
    Told.push_back(std::string(what) + std::string(NameOf(name)));
  }
};

}  // namespace kestrune::test
