#include "placement/CompatibleSet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <random>

using namespace placement;

namespace {

/// Items of one group each, without exclusions.
CompatibleSetProblem Items(const std::vector<double> &weights) {
    CompatibleSetProblem problem;
    problem.weights = weights;
    problem.groups.resize(weights.size());
    std::iota(problem.groups.begin(), problem.groups.end(), 0);
    problem.limits.assign(weights.size(), 1);
    problem.exclude.assign(weights.size(), std::vector<bool>(weights.size()));
    return problem;
}

void Exclude(CompatibleSetProblem &problem, std::size_t a, std::size_t b) {
    problem.exclude[a][b] = problem.exclude[b][a] = true;
}

/// The weight of a set; nothing where it is not allowed.
std::optional<double> WeightOf(const CompatibleSetProblem &problem, const std::vector<std::size_t> &items) {
    double weight = 0;
    std::vector<std::size_t> left = problem.limits;
    for (const std::size_t a : items) {
        if (left[problem.groups[a]]-- == 0)
            return {};
        for (const std::size_t b : items)
            if (problem.exclude[a][b])
                return {};
        weight += problem.weights[a];
    }
    return weight + (problem.bonus ? problem.bonus(items) : 0);
}

double HeaviestByTryingAll(const CompatibleSetProblem &problem) {
    double heaviest = 0;
    for (unsigned bits = 0; bits < 1u << problem.weights.size(); ++bits) {
        std::vector<std::size_t> items;
        for (std::size_t i = 0; i < problem.weights.size(); ++i)
            if (bits >> i & 1)
                items.push_back(i);
        heaviest = std::max(heaviest, WeightOf(problem, items).value_or(0));
    }
    return heaviest;
}

CompatibleSetProblem RandomProblem(std::mt19937 &random) {
    std::vector<double> weights(12);
    for (double &weight : weights)
        weight = 1 + double(random() % 100);
    CompatibleSetProblem problem = Items(weights);
    problem.limits = {1, 2, 3, 12};
    for (std::size_t a = 0; a < weights.size(); ++a) {
        problem.groups[a] = random() % 4;
        for (std::size_t b = 0; b < a; ++b)
            if (random() % 3 == 0)
                Exclude(problem, a, b);
    }
    return problem;
}

} // namespace

TEST(CompatibleSet, TwoThatGoTogetherBeatOneThatIsHeavier) {
    CompatibleSetProblem problem = Items({4, 6, 4});
    Exclude(problem, 0, 1);
    Exclude(problem, 1, 2);
    EXPECT_EQ(HeaviestCompatibleSet(problem), (std::vector<std::size_t>{0, 2}));
}

TEST(CompatibleSet, OfAGroupNoMoreThanItsLimitAreChosen) {
    CompatibleSetProblem problem = Items({1, 5, 3, 2});
    problem.groups = {0, 0, 0, 1};
    problem.limits = {2, 1};
    EXPECT_EQ(HeaviestCompatibleSet(problem), (std::vector<std::size_t>{1, 2, 3}));
}

TEST(CompatibleSet, IsTheHeaviestOfAllSets) {
    std::mt19937 random(1);
    for (int i = 0; i < 200; ++i) {
        const CompatibleSetProblem problem = RandomProblem(random);
        EXPECT_EQ(WeightOf(problem, HeaviestCompatibleSet(problem)), HeaviestByTryingAll(problem));
    }
}

TEST(CompatibleSet, ABonusIsForTheSetAsAWhole) {
    std::mt19937 random(2);
    for (int round = 0; round < 100; ++round) {
        CompatibleSetProblem problem = RandomProblem(random);
        problem.bonus = [](std::span<const std::size_t> items) {
            const auto has = [&](std::size_t i) { return std::ranges::find(items, i) != items.end(); };
            return 30.0 * int(has(0) && has(1)) + 50.0 * int(has(2) && has(3));
        };
        problem.maxBonus = 80;
        EXPECT_EQ(WeightOf(problem, HeaviestCompatibleSet(problem)), HeaviestByTryingAll(problem));
    }
}

TEST(CompatibleSet, NoItemsMakeNoSet) {
    EXPECT_TRUE(HeaviestCompatibleSet(Items({})).empty());
}

TEST(CompatibleSet, ManyEqualChainsInAsManyPlacesEnd) {
    // Twelve models that each fit twelve places: more sets than can be tried.
    constexpr std::size_t number = 12;
    std::mt19937 random(3);
    std::vector<double> weights(number * number);
    for (double &weight : weights)
        weight = 50 + double(random() % 1000) / 1000;
    CompatibleSetProblem problem = Items(weights);
    problem.limits.assign(number, 1);
    for (std::size_t a = 0; a < weights.size(); ++a) {
        problem.groups[a] = a / number;
        for (std::size_t b = 0; b < a; ++b)
            if (a % number == b % number)
                Exclude(problem, a, b);
    }
    EXPECT_EQ(HeaviestCompatibleSet(problem).size(), number);
}
