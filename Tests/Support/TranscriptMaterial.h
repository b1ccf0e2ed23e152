#pragma once

#include "ReelCore/Platform/URL.h"

#include <string>
#include <vector>

namespace TestSupport {

/// What is needed to make speech: flite and pocketsphinx-testdata, as a sentence if they are not
/// there; empty if they are.
std::string lackOfSpeech();

/// Leaves clips and talks with what is said in them in a folder; Transcript/corpus.py lists them.
/// `sample` is TranscriptTools::sample.
void makeSpeech(const ReelCore::URL& folder, const ReelCore::URL& sample);

/// Makes a speech model that says these cues, whatever it hears, each "START END WORDS" in seconds.
/// The name has to hold ".en"; Transcript/scripted_model.py tells the limits.
void makeScriptedModel(const ReelCore::URL& model, const std::vector<std::string>& cues);

/// Makes segmentation.onnx and embedding.onnx in a folder, which tell dull sounds from bright ones.
void makeStubDiarization(const ReelCore::URL& folder);

struct WordErrors {
    int wrong = 0;  ///< Words to put in, take out or change.
    int said = 0;
};

/// Compares texts without case and punctuation.
WordErrors wordErrors(const std::string& said, const std::string& heard);

struct TurnErrors {
    std::string order;  ///< Who is heard after whom, numbered as they come: "1 2 1".
    int confused = 0;   ///< Thousandths of the speech: given to another speaker,
    int missed = 0;     ///< to nobody,
    int madeUp = 0;     ///< and heard where there is none.
};

/// Compares turns, a line each: start and end in seconds, and who speaks, in one word.
TurnErrors turnErrors(const std::string& said, const std::string& heard);

/// The path of one of the programs in Tests/Support/Transcript.
ReelCore::URL transcriptProgram(const std::string& name);

}  // namespace TestSupport
