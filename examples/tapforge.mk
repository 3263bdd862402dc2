# Rules for GNU make: x.ksvf, x.tcl and x.merged.svf from x.svf, converted so that they do
# to the devices what it does (-exact), and proved. A Makefile that converts its folder:
#
#     TCK_FREQ = 1000000
#     all: $(patsubst %.svf,%.ksvf,$(wildcard *.svf))
#     include tapforge.mk
#
# TCK_FREQ is the highest rate in Hz at which the player clocks; SVF_FLAGS are more options
# of tapforge, PROOF_FLAGS those of tapforge-replay: with "-strict -allow frequency" nothing
# else may differ, not even what is compared. One file can have its own:
#
#     slow.ksvf: TCK_FREQ = 400000      (and be played no faster)
#
# A file gets its name once it is proved. Its log is x.ksvf.log, which is shown if it is not;
# then no older x.ksvf stays either. When a Makefile changes, all is made anew; after another
# TCK_FREQ on the command line, or a new tapforge, say make -B.
TAPFORGE ?= tapforge
TAPFORGE_REPLAY ?= tapforge-replay

define svf_rule
@trap 'rm -f $@.part' 0 1 2 15; rm -f $@; \
$(TAPFORGE) $(1) -exact -tck_freq $(or $(TCK_FREQ),$(error Set TCK_FREQ)) $(SVF_FLAGS) \
  -w -i $< -o $@.part >$@.log 2>&1 && echo >>$@.log && \
$(TAPFORGE_REPLAY) -tck_freq $(TCK_FREQ) $(PROOF_FLAGS) $< $@.part >>$@.log 2>&1 && \
mv $@.part $@ && echo "$@: $$(tail -n 1 $@.log)" || { cat $@.log >&2; echo >&2; exit 1; }
endef

%.ksvf: %.svf $(MAKEFILE_LIST)
	$(call svf_rule,-ksvf)

%.tcl: %.svf $(MAKEFILE_LIST)
	$(call svf_rule,-tapbus)

%.merged.svf: %.svf $(MAKEFILE_LIST)
	$(call svf_rule)
