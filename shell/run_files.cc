#include "shell/run_files.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "shell/io/text.h"

namespace tapforge {

void RunFiles::addInput(const std::string& name) {
  const std::vector<OutputFile*> written = outputs();
  const bool same =
      (sOutputName && (*sOutputName == name || sameRegularFile(*sOutputName, name))) ||
      std::any_of(written.begin(), written.end(), [&name](const OutputFile* output) {
        return sameRegularFile(output->name(), name);
      });
  if (same) report.fileError("Input filename same as output");
  FilePtr file = fileCheck(name, OpenMode::read, report);
  // Of the further ones only the name is kept: being readable is all they need.
  if (!pFC_Input.empty()) file.reset();
  pFC_Input.push_back({name, std::move(file)});
}

void RunFiles::makeChannel(std::unique_ptr<OutputFile>& channel, const std::string& name) {
  channel.reset();
  refuseInputAsOutput(name);
  // Two outputs would overwrite each other without a word, and so would an
  // output and the messages.
  bool taken = sameRegularFile(stdout, name) || sameRegularFile(stderr, name);
  for (const OutputFile* other : outputs()) {
    taken = taken || sameRegularFile(other->name(), name);
  }
  if (taken) report.fileError(concat("[", name, "] is already written by this run"));
  if (iOverWritePrompt && fileExists(name)) {
    const char answer = getResponse(concat("[", name, "] exists; Overwrite or Exit (o/e)? "), "OE",
                                    'E', emptyAnswer_);
    if (answer != 'O') throw ProgramEnd{1};
  }
  channel = std::make_unique<OutputFile>(fileCheck(name, OpenMode::write, report), name);
  channel->begin();
}

void RunFiles::refuseInputAsOutput(const std::string& name) {
  for (const InputFile& input : pFC_Input) {
    const bool isFirst = &input == &pFC_Input.front();
    if ((isFirst && input.name == name) || sameRegularFile(input.name, name)) {
      report.fileError("Output filename same as input");
    }
  }
}

std::vector<OutputFile*> RunFiles::outputs() const {
  std::vector<OutputFile*> all;
  for (OutputFile* output : {pFC_Output.get(), pFC_Ascii.get(), pFC_Log.get()}) {
    if (output != nullptr) all.push_back(output);
  }
  return all;
}

}  // namespace tapforge
