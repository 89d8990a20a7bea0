#ifndef TOVOFORMULA_TOVOFORMULA_H
#define TOVOFORMULA_TOVOFORMULA_H

// All exported declarations. The interfaces in CalculationInterfaces.h are the place to start.

#include <TovoPlatform/SameBuild.h>

#include <TovoFormula/CalcErrorTracker.h>
#include <TovoFormula/CalcOpBase.h>
#include <TovoFormula/CalcSetImpl.h>
#include <TovoFormula/CalculationInterfaces.h>
#include <TovoFormula/CalculationOperand.h>
#include <TovoFormula/CalculationPass.h>
#include <TovoFormula/ExprToken.h>
#include <TovoFormula/ExprTree.h>
#include <TovoFormula/ExpressionNames.h>
#include <TovoFormula/FmlaExprBase.h>
#include <TovoFormula/FmlaExpression.h>
#include <TovoFormula/FormtblElem.h>
#include <TovoFormula/FormulaImpl.h>
#include <TovoFormula/FormulaTableImpl.h>
#include <TovoFormula/LanguageScope.h>
#include <TovoFormula/MessageIds.h>
#include <TovoFormula/Module.h>
#include <TovoFormula/RtfDocument.h>
#include <TovoFormula/ScannedVariables.h>
#include <TovoFormula/TokenCodes.h>
#include <TovoFormula/TokenNameIds.h>
#include <TovoFormula/Tree.h>
#include <TovoFormula/VariableImpl.h>
#include <TovoPlatform/LocaleSettings.h>
#include <TovoPlatform/StringResources.h>

#endif
