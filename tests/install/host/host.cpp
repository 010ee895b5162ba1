// A host program as its developer would write it: a chain of two stages, one frame, a figure off the settings board.

#include <DeckClient.h>
#include <MessageText.h>
#include <StageLibrary.h>
#include <signalStatsStruct.h>

#include <Catalogue.h>

#include <boost/any.hpp>
#include <cstdio>

int main() {
    const wavedeck::driver::StageLibrary library("libdspwavedecksimpl.so");
    wavedeck::driver::ClientFacts facts;
    facts.name = "host";
    facts.kind = wavedeck::driver::ChainKind::Frame;
    facts.signals.push_back({.id = "signal", .sampleTime = 0.5, .frameSize = 3});
    wavedeck::driver::DeckClient client(facts);
    client.addStage("magnitude_phase_filter", library.makeFilter("magnitude_phase_filter"));
    const std::string enabled(dspwavedecks::catalogue::signalStatistics::signalStatisticsEnabled.name);
    streamplug::interfaces::device::PropertyList options;
    client.addStage("signal_statistics_filter", library.makeFilter("signal_statistics_filter"),
                    options.addLogical(enabled, true));
    client.setStrategy("dsp_wavedeck_frame_data_strategy", library.makeStrategy("dsp_wavedeck_frame_data_strategy"));
    client.setup();
    client.frame({{1.0, 2.0, 6.0}});
    client.withInfo([](wavedeck::WaveDeckClientInfo& info) {
        const auto* stats =
            boost::any_cast<dspwavedecks::signalStatsStruct>(info.getClientSettings().find("signalStats"));
        std::printf("%s mean %.17g median %.17g\n", stats ? "found" : "absent", stats ? stats->mean : 0.0,
                    stats ? stats->median : 0.0);
    });
    wavedeck::driver::MessageText text;
    std::printf("%s\n", text.write(*client.update().message).c_str());
    return library.version().empty() ? 1 : 0;
}
