#include "shell/run.h"

#include <cstdio>
#include <new>
#include <utility>

#include "io/text.h"

namespace tapforge {

void RunFiles::addInput(const std::string& name) {
  bool same = sOutputName && (*sOutputName == name || sameRegularFile(*sOutputName, name));
  const auto isInput = [&name](const std::unique_ptr<OutputFile>& output) {
    return output != nullptr && sameRegularFile(output->name(), name);
  };
  for (std::unique_ptr<OutputFile>* output : {&pFC_Output, &pFC_Ascii, &pFC_Log}) {
    if (!isInput(*output)) continue;
    same = true;
    // An empty one can lose nothing and stays open, so a log takes the message.
    if ((*output)->begun()) continue;
    if (output == &pFC_Log) report.setLog(nullptr);
    output->reset();
  }
  std::erase_if(replaced_, isInput);
  if (same) report.fileError("Input filename same as output");
  FilePtr file = fileCheck(name, OpenMode::read, report);
  // Of the further ones only the name is kept: being readable is all they need.
  if (!pFC_Input.empty()) file.reset();
  pFC_Input.push_back({name, std::move(file)});
}

void RunFiles::makeChannel(std::unique_ptr<OutputFile>& output, const std::string& name) {
  if (output != nullptr && !output->begun()) replaced_.push_back(std::move(output));
  output.reset();
  refuseInputAsOutput(name);
  // Two outputs would overwrite each other without a word, and so would an
  // output and the messages.
  bool taken = sameRegularFile(stdout, name) || sameRegularFile(stderr, name);
  for (const auto* other : {&pFC_Output, &pFC_Ascii, &pFC_Log}) {
    taken = taken || (*other != nullptr && sameRegularFile((*other)->name(), name));
  }
  if (taken) report.fileError(concat("[", name, "] is already written by this run"));
  if (iOverWritePrompt && fileExists(name)) {
    const char answer = getResponse(concat("[", name, "] exists; Overwrite or Exit (o/e)? "), "OE",
                                    'E', emptyAnswer_, !stdinIsInput);
    if (answer != 'O') throw ProgramEnd{1};
  }
  output = std::make_unique<OutputFile>(fileCheck(name, OpenMode::write, report), name);
  // The same file under an earlier option is emptied as this one, once.
  std::erase_if(replaced_, [&name](const std::unique_ptr<OutputFile>& earlier) {
    return sameRegularFile(earlier->name(), name);
  });
}

void RunFiles::refuseInputAsOutput(const std::string& name) {
  for (const InputFile& input : pFC_Input) {
    const bool isFirst = &input == &pFC_Input.front();
    if ((isFirst && input.name == name) || sameRegularFile(input.name, name)) {
      report.fileError("Output filename same as input");
    }
  }
}

void RunFiles::beginOutputs() {
  begun_ = true;
  for (OutputFile* output : outputs()) output->begin();
  replaced_.clear();
}

void RunFiles::discardUnfinished() {
  if (!removesUnfinished || !std::exchange(begun_, false)) return;
  for (const auto* output : {&pFC_Output, &pFC_Ascii}) {
    if (*output == nullptr || fileStatus((*output)->name()).kind != FileKind::regular) continue;
    const std::string& name = (*output)->name();
    const bool gone = discardFile(name);
    const std::string_view what = !gone              ? "The run failed, but this stays: ["
                                  : fileExists(name) ? "The run failed, so this is emptied: ["
                                                     : "The run failed, so this is removed: [";
    report.errHandler(gone ? Level::note : Level::error, concat(what, name, "]"), Where::nowhere);
  }
}

std::vector<OutputFile*> RunFiles::outputs() const {
  std::vector<OutputFile*> all;
  for (const auto& output : replaced_) all.push_back(output.get());
  for (OutputFile* output : {pFC_Output.get(), pFC_Ascii.get(), pFC_Log.get()}) {
    if (output != nullptr) all.push_back(output);
  }
  return all;
}

int runProgram(RunFiles& files, const std::function<bool()>& conversion) {
  Reporter& report = files.report;
  int status = 1;
  bool failed = true;  // an error has been reported, and the times after it
  try {
    const bool good = conversion();
    // Before the run is reported as finished: a full disk shows only here.
    for (OutputFile* file : files.outputs()) {
      if (file != files.pFC_Log.get()) file->close();
    }
    report.finishClock();
    status = good ? 0 : 1;
    failed = false;
  } catch (const ProgramEnd& end) {
    status = end.status;
    failed = status != 0;
  } catch (const WriteFailed& lost) {
    report.printFatal(fileErrorText(lost.name), Where::nowhere);
  } catch (const std::bad_alloc&) {
    report.printFatal("Null Ptr [memory]", Where::nowhere);
  }
  // Messages that nobody can see are a failure too, which main() tells.
  bool whole = !files.removesUnfinished || (std::fflush(stdout) == 0 && std::ferror(stdout) == 0);
  const auto close = [&](OutputFile& file) {
    try {
      file.close();
    } catch (const WriteFailed& lost) {
      report.errHandler(Level::error, fileErrorText(lost.name), Where::nowhere);
      whole = false;
    }
  };
  for (OutputFile* file : files.outputs()) {
    // The log comes last, and tells what became of the others.
    if (file == files.pFC_Log.get() && (status != 0 || !whole)) files.discardUnfinished();
    close(*file);
  }
  if (status != 0 || !whole) files.discardUnfinished();
  if (whole) return status;
  if (!failed) report.printFinish();
  return 1;
}

}  // namespace tapforge
