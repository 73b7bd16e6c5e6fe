// What a series of games says about two players: score, its uncertainty, Elo, and a sequential test.
//
// Games come in pairs from one opening with colours changed, and the pairs, not the games, are what is
// independent. So everything counts pairs by their sum of points: 0, 1/2, 1, 3/2, 2 (pentanomial).
// Pure functions.
#pragma once

#include <array>
#include <optional>

namespace quarnel::match {

/// Number of pairs by half points, 0..4.
using PairCounts = std::array<int, 5>;

/// Points per game, 0..1, with the limits of the 95 % interval.
struct ScoreEstimate {
    double Score = 0.5;
    double Low = 0;
    double High = 1;
};

/// Normal approximation, score +- 1.96 standard errors of the mean of the pairs, within 0..1. When all N
/// pairs ended alike the spread is unknown; another ending then has a probability of at most 3 / N
/// (0.95 = 1 - (1 - p)^N), and the interval reaches that far.
ScoreEstimate EstimateScore(const PairCounts& pairs);

/// The rating difference at which `score` is expected: 400 log10(score / (1 - score)); infinite at 0 and 1.
double EloFromScore(double score);
/// 1 / (1 + 10^(-elo / 400)).
double ScoreFromElo(double elo);

/// Generalised log-likelihood ratio of "the difference is elo1" to "it is elo0": both hypotheses fix only
/// the mean of the pairs' points, each is given the distribution of that mean that suits the counts best.
/// With counts n_i (N in all) of points x_i per game that is p_i = n_i / N / (1 + l (x_i - s)), where l
/// makes the mean s. Every count is raised by 0.001 so that the mean can always be reached. 0 without pairs.
double LogLikelihoodRatio(const PairCounts& pairs, double elo0, double elo1);

enum class Verdict { Undecided, Accepted, Rejected };

/// Sequential probability ratio test: accepts elo1 from log((1 - beta) / alpha) on and rejects it from
/// log(beta / (1 - alpha)) down; both error rates are 0.05, the bounds +-2.944.
Verdict JudgeRatio(double logLikelihoodRatio);

} // namespace quarnel::match
