#include "formats/structures/AssemblyOperators.h"

#include "base/Numbers.h"
#include "base/Words.h"
#include "formats/files/ReadBytes.h"
#include "formats/structures/MmcifDocument.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace formats {

namespace {

using gemmi::cif::Block;
using gemmi::cif::Table;

/// As of a structure that is read for its atoms.
constexpr std::size_t maxBytes = std::size_t(512) << 20;
/// More than the largest viruses and filaments have, and few enough for the memory.
constexpr std::size_t maxOperators = 10000;

using Operators = std::map<std::string, AssemblyOperator>; ///< by their identifiers

AssemblyOperator Product(const AssemblyOperator &a, const AssemblyOperator &b) {
    AssemblyOperator product;
    for (std::size_t i = 0; i < 3; ++i) {
        product.translation[i] = a.translation[i];
        for (std::size_t j = 0; j < 3; ++j) {
            product.translation[i] += a.rotation[3 * i + j] * b.translation[j];
            for (std::size_t k = 0; k < 3; ++k)
                product.rotation[3 * i + j] += a.rotation[3 * i + k] * b.rotation[3 * k + j];
        }
    }
    return product;
}

bool IsSame(const AssemblyOperator &a, const AssemblyOperator &b) {
    constexpr double turn = 1e-4, shift = 1e-2;
    const auto near = [](double tolerance) {
        return [tolerance](double x, double y) { return std::abs(x - y) < tolerance; };
    };
    return std::ranges::equal(a.rotation, b.rotation, near(turn)) &&
           std::ranges::equal(a.translation, b.translation, near(shift));
}

/// Whether the rows are perpendicular, of length 1 and right-handed, to the digits that files have.
bool IsRotation(const std::array<double, 9> &m) {
    constexpr double tolerance = 0.01;
    const auto row = [&](std::size_t i, std::size_t j) { return m[3 * (i % 3) + j % 3]; };
    for (std::size_t i = 0; i < 3; ++i) {
        double square = 0, product = 0;
        for (std::size_t j = 0; j < 3; ++j) {
            square += row(i, j) * row(i, j);
            product += row(i, j) * row(i + 1, j);
        }
        if (!(std::abs(square - 1) < tolerance) || !(std::abs(product) < tolerance))
            return false;
    }
    double determinant = 0;
    for (std::size_t j = 0; j < 3; ++j)
        determinant += row(0, j) * (row(1, j + 1) * row(2, j + 2) - row(1, j + 2) * row(2, j + 1));
    return determinant > 0;
}

/// "1,3-5" as 1, 3, 4, 5.
std::vector<std::string> IdentifiersIn(const std::string &list) {
    std::vector<std::string> identifiers;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        const std::string item = list.substr(begin, end - begin);
        const std::size_t dash = item.find('-');
        const auto first = base::ReadInteger(item.substr(0, dash));
        const auto last = dash == std::string::npos ? first : base::ReadInteger(item.substr(dash + 1));
        if (dash == std::string::npos || !first || !last || *last - *first >= int(maxOperators))
            identifiers.push_back(item);
        else
            for (int i = *first; i <= *last; ++i)
                identifiers.push_back(std::to_string(i));
        begin = end + 1;
    }
    return identifiers;
}

/// Reads the operators of one file.
class AssemblyReader {
public:
    AssemblyReader(const std::string &file, Block &block)
        : m_file(file)
        , m_block(block) {}

    std::vector<AssemblyOperator> Read() {
        ReadOperators();
        std::vector<AssemblyOperator> all;
        std::string assembly;
        for (const auto row :
             m_block.find("_pdbx_struct_assembly_gen.", {"assembly_id", "oper_expression"})) {
            if (assembly.empty())
                assembly = row.str(0);
            if (row.str(0) != assembly)
                continue;
            for (const AssemblyOperator &op : Expand(row.str(1)))
                if (std::ranges::none_of(all,
                                         [&](const AssemblyOperator &known) { return IsSame(known, op); }))
                    all.push_back(op);
        }
        if (all.empty())
            throw FileError(m_file, "", "tells of no assembly: there is no _pdbx_struct_assembly_gen table");
        return all;
    }

private:
    void ReadOperators() {
        const std::vector<std::string> tags = {"id",        "matrix[1][1]", "matrix[1][2]", "matrix[1][3]",
                                               "vector[1]", "matrix[2][1]", "matrix[2][2]", "matrix[2][3]",
                                               "vector[2]", "matrix[3][1]", "matrix[3][2]", "matrix[3][3]",
                                               "vector[3]"};
        for (const auto row : m_block.find("_pdbx_struct_oper_list.", tags)) {
            AssemblyOperator op;
            for (std::size_t i = 0; i < 3; ++i) {
                for (std::size_t j = 0; j < 3; ++j)
                    op.rotation[3 * i + j] = Number(row.str(int(1 + 4 * i + j)), row.str(0));
                op.translation[i] = Number(row.str(int(4 + 4 * i)), row.str(0));
            }
            if (!IsRotation(op.rotation))
                throw FileError(m_file, "operator " + row.str(0) + " of _pdbx_struct_oper_list",
                                "its matrix is no rotation");
            m_operators[row.str(0)] = op;
        }
    }

    double Number(const std::string &text, const std::string &identifier) const {
        const auto number = base::ReadNumber(text);
        if (!number || !std::isfinite(*number))
            throw FileError(m_file, "operator " + identifier + " of _pdbx_struct_oper_list",
                            base::Quoted(text) + " is not a number");
        return *number;
    }

    /// "(1-3)(P)" as 1·P, 2·P, 3·P: every operator of a bracket times every one of the next.
    std::vector<AssemblyOperator> Expand(const std::string &expression) const {
        std::vector<AssemblyOperator> products{{{1, 0, 0, 0, 1, 0, 0, 0, 1}, {}}};
        std::string text = expression;
        std::erase(text, ' ');
        if (!text.starts_with('('))
            text = "(" + text + ")";
        while (!text.empty()) {
            const std::size_t close = text.find(')');
            if (!text.starts_with('(') || close == std::string::npos)
                Fail(expression, "cannot be read as a list of operators");
            std::vector<AssemblyOperator> next;
            for (const std::string &identifier : IdentifiersIn(text.substr(1, close - 1))) {
                const auto found = m_operators.find(identifier);
                if (found == m_operators.end())
                    Fail(expression, "names the operator " + base::Quoted(identifier) +
                                         ", which _pdbx_struct_oper_list does not have");
                for (const AssemblyOperator &product : products)
                    next.push_back(Product(product, found->second));
                if (next.size() > maxOperators)
                    Fail(expression, "stands for more than " + std::to_string(maxOperators) + " operators");
            }
            products = std::move(next);
            text.erase(0, close + 1);
        }
        return products;
    }

    [[noreturn]] void Fail(const std::string &expression, const std::string &problem) const {
        throw FileError(m_file, "_pdbx_struct_assembly_gen",
                        "oper_expression " + base::Quoted(expression) + " " + problem);
    }

    const std::string &m_file;
    Block &m_block;
    Operators m_operators;
};

} // namespace

std::vector<AssemblyOperator> ReadAssemblyOperators(const std::string &file) {
    ByteSource source(file);
    return ReadAssemblyOperatorsFrom(source);
}

std::vector<AssemblyOperator> ReadAssemblyOperatorsFrom(ByteSource &source) {
    return WithMemory(source.Name(), [&] {
        const std::string text = ReadBytes(source, maxBytes);
        gemmi::cif::Document document = ParseDocument(source.Name(), text);
        for (Block &block : document.blocks)
            if (block.find("_pdbx_struct_oper_list.", {"id"}).length() > 0)
                return AssemblyReader(source.Name(), block).Read();
        throw FileError(source.Name(), "", "tells of no operators: there is no _pdbx_struct_oper_list table");
    });
}

} // namespace formats
