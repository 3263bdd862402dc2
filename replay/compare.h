#ifndef TAPFORGE_REPLAY_COMPARE_H_
#define TAPFORGE_REPLAY_COMPARE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "replay/findings.h"
#include "replay/operation.h"
#include "replay/waits.h"

namespace tapforge_replay {

/// Plays a source and what was made of it side by side and notes how what reaches
/// the devices differs. Memory grows with the longest scan, not with the files.
class Comparison {
 public:
  /// The readers are borrowed. `tckHertz` is the rate of times that became
  /// clocks, 0 if not known.
  Comparison(Reader& source, Reader& converted, double tckHertz)
      : source_{source},
        converted_{converted},
        rate_(tckHertz),
        waits_(rate_, findings_, converted.form().ends_with("Tcl")) {}

  /// Throws Fault when a file cannot be read or played.
  void run();

  /// A few lines for people.
  std::string report() const;
  const Findings& findings() const { return findings_; }

 private:
  // TRST, FREQUENCY or PIO.
  struct Setting {
    Operation::Kind kind;
    std::string value;
    Place place;
    double hertz = 0;
  };

  // What a file does between two scans.
  struct Gap {
    struct Origin {
      std::size_t position = 0;  // of its first state in the walk
      Operation::Kind kind = Operation::Kind::kEnd;
      Place place;
    };

    std::vector<TapState>
        walk;  // one after the other, a stable state once where the TAP stays in it
    std::vector<Origin> origins;
    std::vector<PlacedWait> waits;
    std::vector<Setting> settings;

    void begin(const Operation& operation);
    void enter(const std::vector<TapState>& states);
    void wait(const Wait& wait, const Place& place);
    void clear();
    const Origin* originOf(std::size_t position) const;  // null: the start of the file
  };

  struct Side {
    Reader& reader;
    Operation operation{};
    Gap gap{};
    bool atScan = false;
    bool ended = false;
    Place scan{};  // the last one
    std::uint64_t scans = 0;

    void readGap();  // to the next scan, to the end, or until there is much
    bool inGap() const { return !atScan && !ended; }
    void passScan();
  };

  void compareGaps();
  void compareWalks();
  void compareSettings(Operation::Kind kind, Difference difference);
  bool compareScans();  // false: there is no sense in going on
  void endAtDifferentScan(const std::string& text);
  void countRest(Side& side);
  std::string where() const;  // both places of the present scan

  Side source_;
  Side converted_;
  ClockRate rate_;
  Findings findings_;
  WaitComparison waits_;
  bool stopped_ = false;
  bool resetUsed_ = false;  // a TRST ON was met
};

}  // namespace tapforge_replay

#endif  // TAPFORGE_REPLAY_COMPARE_H_
