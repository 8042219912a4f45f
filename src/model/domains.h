// Domains: named groups of classes the user puts together. A class belongs to at most one
// domain. What a domain keeps (and saves) are the names of its classes; the class objects
// are linked to it by name, so a class that disappears in a re-parse and comes back
// returns to its domain.
//
// Threads: domains belong to their class list and follow its lock rule.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/code_object.h"
#include "support/exception.h"
#include "support/stringlist.h"

namespace velmora {

class TClassDescription;
class TClasslist;
class TDomainList;

/// Raised when a domain would get a blank name or one another domain already has.
class EDuplicateDomainError : public Exception {
 public:
  EDuplicateDomainError();
};

inline constexpr char kDuplicateDomainName[] = "Domain names must be unique and may not be blank!";
inline constexpr char kConfirmRemoveDomain[] = "Do you really want to remove the domain \"%s\"?";

class TDomain : public TNamedObject {
 public:
  /// Domains are language-neutral; the language byte is kept only because the record has
  /// one.
  explicit TDomain(std::string_view name, TLanguage language = TLanguage::Cpp);
  /// Clears the Domain link of every member class.
  ~TDomain() override;

  int Count() const { return static_cast<int>(Classes.size()); }
  /// Adds the class (and its name) unless it is already a member; sets its Domain link and
  /// keeps Classes in name order. A class that was in another domain leaves it, name and
  /// all: a class is in one domain at a time.
  void AddClass(TClassDescription* cls);
  /// Takes the class out (clearing its link) when it is a member; with `alsoForgetName`
  /// its name goes too, otherwise the name stays so the class can come back.
  void RemoveClass(TClassDescription* cls, bool alsoForgetName);
  bool ContainsClass(const TClassDescription* cls) const;
  /// Whether the class names hold `name` (compared as class names are: case-sensitive).
  bool ContainsName(std::string_view name) const;
  /// Changed(index) on the domain.
  void NotifyAll(int index) { Changed(index); }

  /// Domain record: named object, u32 count, the class names in list order. Loading
  /// forgets the members and names the domain had; the classes are linked afterwards.
  void LoadFromStream(TStream& stream) override;
  void SaveToStream(TStream& stream) const override;

  /// The member classes (not owned), sorted by name, case-insensitive.
  std::vector<TClassDescription*> Classes;
  /// True after the domain was read or written; every AddClass resets it, so whoever
  /// keeps the domain file knows that it is due.
  mutable bool Saved = false;
  TDomainList* DomainList = nullptr;
  /// The names of the member classes, sorted, case-sensitive like the class index.
  TStringList ClassNames{true, TDuplicates::Ignore, true};
};

/// The domains of one class list, owned, sorted by name (case-insensitive).
class TDomainList {
 public:
  explicit TDomainList(TClasslist* classList = nullptr) : ClassList(classList) {}
  ~TDomainList();
  TDomainList(const TDomainList&) = delete;
  TDomainList& operator=(const TDomainList&) = delete;

  int Count() const { return static_cast<int>(items_.size()); }
  TDomain* Items(int i) const { return items_[i].get(); }

  /// Takes the domain into the list (it already being there is ignored) and re-sorts, so
  /// Add of a renamed domain moves it to its place. Names are not checked: loading takes
  /// what the file holds; dialogs go through CheckName or CreateDomain.
  TDomain* Add(std::unique_ptr<TDomain> domain);
  /// A new empty domain of that name, added; raises EDuplicateDomainError when the name is
  /// blank or taken.
  TDomain* CreateDomain(std::string_view name);
  /// Raises EDuplicateDomainError when `name` is blank or names a domain other than
  /// `except`.
  void CheckName(std::string_view name, const TDomain* except = nullptr) const;
  /// Renames after CheckName and re-sorts.
  void Rename(TDomain* domain, std::string_view name);
  /// Frees the domain (its classes lose their link).
  void Remove(TDomain* domain);
  /// The first domain of that name (linear, case-insensitive), or null.
  TDomain* FindByName(std::string_view name) const;
  /// Takes the class out of the first domain whose Classes hold it.
  void RemoveClassFromDomains(TClassDescription* cls, bool alsoForgetName);
  /// A new class: the first domain whose names hold its name gets it.
  void ClassAdded(TClassDescription* cls);
  /// After loading: every domain looks its class names up in ClassList and takes the
  /// classes found that are in no other domain yet.
  void LinkClasses();
  void Clear() { items_.clear(); }
  /// Changed(index) on every domain.
  void NotifyAll(int index);

  /// u32 domain marker when `withMarker` (a wrong one raises EClassInfoFileError kind 1),
  /// u32 count, then per domain its name and its record. Loading clears the list first.
  void LoadFromStream(TStream& stream, bool withMarker);
  void SaveToStream(TStream& stream, bool withMarker) const;
  /// The domain information file: two magic words, the banner with its length twice, then
  /// the list without marker. A file whose header does not match is ignored: the list is
  /// left alone and false returned. A damaged list raises EClassInfoFileError; a file that
  /// cannot be read raises EStreamError. The domains read are linked to ClassList.
  bool LoadFromFile(const std::string& path);
  /// Writes the whole file beside `path` and renames it over the old one; raises
  /// EStreamError and leaves the old file as it was when any step fails.
  void SaveToFile(const std::string& path) const;

  /// The class list the domains' classes live in (not owned); may be null.
  TClasslist* ClassList;

 private:
  void Sort();
  std::vector<std::unique_ptr<TDomain>> items_;
};

}  // namespace velmora
