#include "ExpressionCases.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace bench {
namespace {

double Area(const Inputs& in)
{
    return in[LENGTH] * in[WIDTH] + 1;
}

double Perimeter(const Inputs& in)
{
    return (in[LENGTH] + in[WIDTH]) * 2 - in[HEIGHT] / 4;
}

double Rate(const Inputs& in)
{
    return in[LENGTH] > in[WIDTH] ? in[PRICE] * 0.94 : in[PRICE] * 1.15;
}

double Diagonal(const Inputs& in)
{
    return std::sqrt(std::pow(in[LENGTH], 2) + std::pow(in[WIDTH], 2)) * 1.05;
}

double Rotated(const Inputs& in)
{
    const double angle = in[ANGLE] * std::numbers::pi / 180;
    return std::sin(angle) * in[LENGTH] + std::cos(angle) * in[WIDTH] - std::abs(in[HEIGHT] - 40);
}

double Discount(const Inputs& in)
{
    return (in[COUNT] >= 5 ? 0.06 : in[COUNT] > 1 && in[LENGTH] < 100 ? 0.03 : 0) + in[PRICE];
}

double Bounds(const Inputs& in)
{
    return in[LENGTH] / 2 + in[WIDTH] * 3 + std::max(in[HEIGHT], 2.5) + std::min(in[PRICE], 4.0) +
           (in[LENGTH] + in[WIDTH] + in[HEIGHT]) / 3;
}

double Estimate(const Inputs& in)
{
    return (in[LENGTH] > in[WIDTH] ? RoundedTo(in[LENGTH] * in[WIDTH] * 1.15, 2) : 0) +
           (in[LENGTH] / 2 + in[WIDTH] * 3 + std::max(in[HEIGHT], 2.5)) -
           std::pow(in[WIDTH], 2) * (in[HEIGHT] - 0.25) / 12 + std::abs(in[LENGTH] - 40);
}

constexpr ExpressionCase kCases[] = {
    {"a product", "V(Length)*V(Width)+1", "Length*Width+1", "Length*Width+1", Area},
    {"arithmetic", "(V(Length)+V(Width))*2-V(Height)/4", "(Length+Width)*2-Height/4",
     "(Length+Width)*2-Height/4", Perimeter},
    {"a choice", "IF(V(Length)>V(Width),V(Price)*0.94,V(Price)*1.15)",
     "Length>Width ? Price*0.94 : Price*1.15", "Length>Width and Price*0.94 or Price*1.15", Rate},
    {"powers", "SQRT(POWER(V(Length),2)+POWER(V(Width),2))*1.05", "sqrt(Length^2+Width^2)*1.05",
     "math.sqrt(Length^2+Width^2)*1.05", Diagonal},
    {"angles", "SIN(V(Angle))*V(Length)+COS(V(Angle))*V(Width)-ABS(V(Height)-40)",
     "sin(Angle*_pi/180)*Length+cos(Angle*_pi/180)*Width-abs(Height-40)",
     "math.sin(math.rad(Angle))*Length+math.cos(math.rad(Angle))*Width-math.abs(Height-40)",
     Rotated},
    {"nested choices", "IF(V(Count)>=5,0.06,IF(V(Count)>1 AND V(Length)<100,0.03,0))+V(Price)",
     "(Count>=5 ? 0.06 : (Count>1 && Length<100 ? 0.03 : 0))+Price",
     "(Count>=5 and 0.06 or (Count>1 and Length<100 and 0.03 or 0))+Price", Discount},
    {"lists",
     "SUM(V(Length)/2,V(Width)*3,MAX(V(Height),2.5),MIN(V(Price),4))"
     "+AVG(V(Length),V(Width),V(Height))",
     "sum(Length/2,Width*3,max(Height,2.5),min(Price,4))+avg(Length,Width,Height)",
     "Length/2+Width*3+math.max(Height,2.5)+math.min(Price,4)+(Length+Width+Height)/3", Bounds},
    {"all of them",
     "IF(V(Length)>V(Width),ROUND(V(Length)*V(Width)*1.15,2),0)"
     "+SUM(V(Length)/2,V(Width)*3,MAX(V(Height),2.5))"
     "-POWER(V(Width),2)*(V(Height)-0.25)/12+ABS(V(Length)-40)",
     "(Length>Width ? round(Length*Width*1.15,2) : 0)+sum(Length/2,Width*3,max(Height,2.5))"
     "-Width^2*(Height-0.25)/12+abs(Length-40)",
     "(Length>Width and round(Length*Width*1.15,2) or 0)+(Length/2+Width*3+math.max(Height,2.5))"
     "-Width^2*(Height-0.25)/12+math.abs(Length-40)",
     Estimate},
};

} // namespace

std::span<const ExpressionCase> ExpressionCases()
{
    return kCases;
}

const std::vector<NamedValue>& StartingInputs()
{
    static const std::vector<NamedValue> inputs = {
        {"Length", kLengths[0]}, {"Width", 8.25}, {"Height", 2.75},
        {"Price", 128.5},        {"Count", 3},    {"Angle", 27},
    };
    return inputs;
}

} // namespace bench
