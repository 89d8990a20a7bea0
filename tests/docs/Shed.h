#ifndef TOVOFORMULA_TESTS_SHED_H
#define TOVOFORMULA_TESTS_SHED_H

#include <TovoJob/TovoJob.h>

namespace tovo::test {

// The job of the guides.
inline Job Shed()
{
    Job job;
    job.AddVariable("Width", 2.5, "m").Value();
    job.AddVariable("Heated?", 1).Value();
    job.AddFormula("Area", "V(Width)*V(Width)", "m²").Value();
    job.AddFormula("Price", "F(Area)*T(Rate)", "€").Value();
    Table rate;
    rate.name = "Rate";
    rate.rowSelector = FormulaNamed("Area");
    rate.rowLimits = {5, 10};
    rate.cells = {{120.0}, {95.5}};
    job.AddTable(rate).Value();
    return job;
}

} // namespace tovo::test

#endif
