// The expert: the object an add-in registers with the IDE when it is loaded, and the
// shape of the add-in's entry point.
#pragma once

#include <cstdint>
#include <string>

#include "ide/interface.h"

namespace velmora {

class TIToolServices;

enum class TExpertStyle : int {
  Standard = 0,  ///< one command in the Help menu
  Form = 1,      ///< an entry in the form repository
  Project = 2,   ///< an entry in the project repository
  AddIn = 3,     ///< no repository entry; builds and owns its menus itself
};

/// Bits of an expert's state: its single menu command enabled or checked.
using TExpertState = uint32_t;
inline constexpr TExpertState esEnabled = 1;
inline constexpr TExpertState esChecked = 2;

/// Called on the main thread. The IDE holds the registered expert's reference and
/// releases it when the IDE shuts down; the expert's destructor does the add-in's
/// cleanup.
class TIExpert : public TInterface {
 public:
  virtual std::string Name() = 0;
  virtual std::string Author() = 0;
  virtual std::string Comment() = 0;
  virtual std::string Page() = 0;
  /// An icon handle, 0 for none.
  virtual uintptr_t Glyph() = 0;
  virtual TExpertStyle Style() = 0;
  virtual TExpertState State() = 0;
  /// Unique among the IDE's experts ("Company.Product").
  virtual std::string IDString() = 0;
  virtual std::string MenuText() = 0;
  virtual void Execute() = 0;
};

/// Hands the IDE the add-in's expert; the IDE takes over the reference.
using TExpertRegisterProc = bool (*)(TIExpert* expert);
/// Called by the IDE before it unloads the add-in.
using TExpertTerminateProc = void (*)();

/// The add-in's entry point, called once when the IDE loads the library.
using TExpertInitProc = bool (*)(TIToolServices* toolServices, TExpertRegisterProc registerProc,
                                 TExpertTerminateProc* terminate);

/// The name under which a loadable add-in exports its TExpertInitProc.
inline constexpr char kExpertEntryPointName[] = "INITEXPERT0017";

}  // namespace velmora
