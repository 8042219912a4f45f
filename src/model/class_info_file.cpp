#include "model/class_info_file.h"

#include <sys/stat.h>

#include "model/class_info_error.h"
#include "model/class_list.h"
#include "model/files.h"
#include "support/stream.h"

namespace velmora {
namespace {

TModelFileOutcome Failure(std::optional<TClassInfoErrorKind> kind, std::string message) {
  return TModelFileOutcome{.Ok = false, .ErrorKind = kind, .Message = std::move(message)};
}

bool IsRegularFile(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

}  // namespace

void SaveClassInfoFile(const std::string& path, const TFilesList& files,
                       const TClasslist& classes) {
  TMemoryStream stream;
  files.SaveToStream(stream);
  classes.SaveToStream(stream);
  stream.SaveToFile(path);
}

void LoadClassInfoFile(const std::string& path, TFilesList& files, TClasslist& classes) {
  TMemoryStream stream;
  stream.LoadFromFile(path);
  files.LoadFromStream(stream);
  classes.LoadFromStream(stream);
}

std::string FormatMessage(std::string_view pattern, std::initializer_list<std::string_view> args) {
  std::string out;
  out.reserve(pattern.size() + 64);
  auto arg = args.begin();
  for (size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == '%' && i + 1 < pattern.size() && pattern[i + 1] == 's') {
      if (arg != args.end()) out += *arg++;
      ++i;
    } else {
      out += pattern[i];
    }
  }
  return out;
}

TModelFileOutcome LoadClassInfoFileReported(const std::string& path, TFilesList& files,
                                            TClasslist& classes) {
  if (!IsRegularFile(path)) return Failure(std::nullopt, FormatMessage(kClassInfoMissing, {path}));
  try {
    LoadClassInfoFile(path, files, classes);
    return {};
  } catch (const EClassInfoFileError& e) {
    return Failure(e.ErrorKind, FormatMessage(kClassInfoLoadFailed, {path, e.Message()}));
  } catch (const Exception& e) {
    return Failure(std::nullopt, FormatMessage(kClassInfoLoadFailed, {path, e.Message()}));
  }
}

TModelFileOutcome SaveClassInfoFileReported(const std::string& path, const TFilesList& files,
                                            const TClasslist& classes) {
  try {
    SaveClassInfoFile(path, files, classes);
    return {};
  } catch (const Exception& e) {
    return Failure(std::nullopt, FormatMessage(kClassInfoSaveFailed, {path, e.Message()}));
  }
}

TModelFileOutcome LoadDomainFileReported(const std::string& path, std::string_view projectName,
                                         TDomainList& domains) {
  try {
    domains.LoadFromFile(path);
    return {};
  } catch (const EClassInfoFileError& e) {
    return Failure(e.ErrorKind, FormatMessage(kDomainInfoLoadFailed, {projectName, e.Message()}));
  } catch (const Exception& e) {
    return Failure(std::nullopt, FormatMessage(kDomainInfoLoadFailed, {projectName, e.Message()}));
  }
}

TModelFileOutcome SaveDomainFileReported(const std::string& path, std::string_view projectName,
                                         const TDomainList& domains) {
  try {
    domains.SaveToFile(path);
    return {};
  } catch (const Exception& e) {
    return Failure(std::nullopt, FormatMessage(kDomainInfoSaveFailed, {projectName, e.Message()}));
  }
}

}  // namespace velmora
