#pragma once

#include <hbrcdatamodel/export.h>

#include <nrk/fwk/ikeldbproxy.h>
#include <nrk/ibase.h>

#include <boost/signals2/signal.hpp>

namespace hbrc::host {
class Workspace;

// The database proxy ("KELDBProxy"): the workspace the user works in now. Attaching a workspace
// emits OnInitialConnectionToDB (the first time in the proxy's life only), then OnConnectedToDB;
// detaching emits OnDisconnectedFromDB while the workspace is still reachable through the proxy.
class HBRC_DATAMODEL_EXPORT KelDbProxy final : public nrk::fwk::IKELDBProxy, public nrk::IBase
{
public:
    const char* GetClsName() const override { return "Korvex.NRK.KELDBProxy"; }

    void Connect_OnInitialConnectionToDB(nrk::fwk::IKELDBProxy_Slot* slot,
                                         nrk::signalling::IConnection** connection) override;
    void Connect_OnConnectedToDB(nrk::fwk::IKELDBProxy_Slot* slot, nrk::signalling::IConnection** connection) override;
    void Connect_OnDisconnectedFromDB(nrk::fwk::IKELDBProxy_Slot* slot,
                                      nrk::signalling::IConnection** connection) override;

    bool IsConnected() const override { return m_workspace != nullptr; }
    kel4::IDataModelMgr* GetDataModelMgr() const override;
    KELPtr<kel4::IKELInstance> GetKELInstance() const override;
    borax::datamodel::ItemLibraryAccessor GetItemLibraryAccessor() const override;

    // Makes workspace the current one (detaching the previous one first). Not owned.
    void Attach(Workspace& workspace);
    void Detach();
    Workspace* CurrentWorkspace() const { return m_workspace; }

private:
    using Signal = boost::signals2::signal<void()>;
    static void ConnectTo(Signal& signal, void (nrk::fwk::IKELDBProxy_Slot::*handler)(),
                          nrk::fwk::IKELDBProxy_Slot* slot, nrk::signalling::IConnection** connection);

    Signal m_initialConnection;
    Signal m_connected;
    Signal m_disconnected;
    Workspace* m_workspace = nullptr;
    bool m_wasConnected = false;
};

}  // namespace hbrc::host
