#include "detection/FaceEvaluation.h"

namespace PluginKrHvcP2 {

namespace {

bool isForGender(const DetectionContent &content, int gender)
{
    return (content.genders & gender) != 0;
}

/// Why the content that was chosen, was.
ContentReason reasonOfChoice(const DetectionContent &content, int age, int gender)
{
    if (!isForGender(content, gender))
        return ContentReason::AgeFit;
    return content.coversAge(age) ? ContentReason::FullFit : ContentReason::DefaultFit;
}

/// Why a content that was looked at was not chosen, when @p choice was.
ContentReason reasonAgainst(
    const DetectionContent &content, int age, int gender, ContentReason choice)
{
    const bool forGender = isForGender(content, gender);
    const bool isCandidate = forGender ? content.isDefault : content.coversAge(age);
    if (!isCandidate)
        return forGender ? ContentReason::OtherAge : ContentReason::OtherGender;
    if (choice == ContentReason::FullFit)
        return ContentReason::BeforeFullFit;
    if (forGender)
        return ContentReason::NotLastDefault;
    return choice == ContentReason::DefaultFit ? ContentReason::BelowDefault
                                               : ContentReason::NotLastAgeFit;
}

} // namespace

FaceEvaluation evaluateFace(const FaceResult &face, const DetectionContents &contents)
{
    FaceEvaluation evaluation;
    if (face.age) {
        evaluation.age = face.age->value;
        evaluation.ageMarked = face.age->marked;
    }
    if (face.gender) {
        evaluation.gender = face.gender->value;
        evaluation.genderMarked = face.gender->marked;
    }
    evaluation.match = matchContent(face, contents);

    // Without a choice there is no candidate either, so what stands for it does not matter.
    const int chosen = evaluation.match.position;
    const ContentReason choice = chosen < 0
        ? ContentReason::OtherGender
        : reasonOfChoice(contents.at(chosen), evaluation.age, evaluation.gender);
    evaluation.reasons.reserve(contents.size());
    for (int position = 0; position < contents.size(); ++position) {
        ContentReason reason = choice;
        if (choice == ContentReason::FullFit && position > chosen)
            reason = ContentReason::BehindFullFit;
        else if (position != chosen)
            reason
                = reasonAgainst(contents.at(position), evaluation.age, evaluation.gender, choice);
        evaluation.reasons.append(reason);
    }
    return evaluation;
}

} // namespace PluginKrHvcP2
