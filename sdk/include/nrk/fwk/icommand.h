#pragma once

#include <kel4/sdkglobal.h>

#include <memory>
#include <string>
#include <vector>

namespace nrk::fwk {

/// A named parameter of a command.
class KEL_INTERFACE ICommandParam
{
public:
    virtual ~ICommandParam() = default;
    virtual const std::string& GetName() const = 0;
    virtual std::unique_ptr<ICommandParam> Clone() const = 0;
};

/// A parameter holding a value of type T.
template <class T>
class TypedParam final : public ICommandParam
{
public:
    TypedParam(std::string name, T value) : m_name(std::move(name)), m_value(std::move(value)) {}
    const std::string& GetName() const override { return m_name; }
    std::unique_ptr<ICommandParam> Clone() const override { return std::make_unique<TypedParam>(*this); }
    const T& GetValue() const { return m_value; }

private:
    std::string m_name;
    T m_value;
};

using StringParam = TypedParam<std::string>;
using BoolParam = TypedParam<bool>;
using IntParam = TypedParam<int>;

/// A command of the host's command framework. Commands are counted; the command manager that
/// executes one may keep it in its undo history.
class KEL_INTERFACE ICommand
{
public:
    virtual void AddRef() const = 0;
    virtual void Release() const = 0;
    virtual ~ICommand() = default;

    /// The identifier under which the host knows this kind of command.
    virtual const char* GetCommandIdentifier() const = 0;
    virtual const std::string& GetName() const = 0;
    virtual void SetName(const std::string& name) = 0;
    /// Performs, respectively undoes, the command; called by the command manager.
    virtual bool DoAction() = 0;
    virtual bool UndoAction() = 0;
    /// True when this command and next may form one undo step.
    virtual bool CanCollapse(const ICommand& next) const = 0;
    /// Adds a copy of param; a parameter of the same name is replaced.
    virtual void AddParam(const ICommandParam& param) = 0;
    /// The parameter of that name, or null.
    virtual const ICommandParam* GetParam(const std::string& name) const = 0;
    virtual std::vector<const ICommandParam*> GetAllParams() const = 0;
    virtual void ClearParams() = 0;
    virtual bool operator==(const ICommand& other) const = 0;
    /// A transient command is not kept in the undo history.
    virtual bool IsTransient() const = 0;
    virtual void SetTransient(bool transient) = 0;
    /// Same identifier and the same parameters by name and kind, in order; the values are not compared.
    virtual bool Equals(const ICommand& other) const = 0;
};

/// The parameter of that name and type, or null.
template <class Param>
const Param* GetParamAs(const ICommand& command, const std::string& name)
{
    return dynamic_cast<const Param*>(command.GetParam(name));
}

}  // namespace nrk::fwk
