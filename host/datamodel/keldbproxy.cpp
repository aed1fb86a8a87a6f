#include <hbrcdatamodel/keldbproxy.h>

#include <hbrcdatamodel/workspace.h>

#include <basesystem/hbconnection.h>

namespace hbrc::host {

void KelDbProxy::ConnectTo(Signal& signal, void (nrk::fwk::IKELDBProxy_Slot::*handler)(),
                           nrk::fwk::IKELDBProxy_Slot* slot, nrk::signalling::IConnection** connection)
{
    if (!slot || !connection)
        return;
    *connection = new BaseSystem::hbconnection(signal.connect([slot, handler] { (slot->*handler)(); }));
}

void KelDbProxy::Connect_OnInitialConnectionToDB(nrk::fwk::IKELDBProxy_Slot* slot,
                                                 nrk::signalling::IConnection** connection)
{
    ConnectTo(m_initialConnection, &nrk::fwk::IKELDBProxy_Slot::OnInitialConnectionToDB, slot, connection);
}

void KelDbProxy::Connect_OnConnectedToDB(nrk::fwk::IKELDBProxy_Slot* slot, nrk::signalling::IConnection** connection)
{
    ConnectTo(m_connected, &nrk::fwk::IKELDBProxy_Slot::OnConnectedToDB, slot, connection);
}

void KelDbProxy::Connect_OnDisconnectedFromDB(nrk::fwk::IKELDBProxy_Slot* slot,
                                              nrk::signalling::IConnection** connection)
{
    ConnectTo(m_disconnected, &nrk::fwk::IKELDBProxy_Slot::OnDisconnectedFromDB, slot, connection);
}

kel4::IDataModelMgr* KelDbProxy::GetDataModelMgr() const
{
    return m_workspace ? &m_workspace->Model() : nullptr;
}

KELPtr<kel4::IKELInstance> KelDbProxy::GetKELInstance() const
{
    return m_workspace ? m_workspace->Model().GetInstance() : nullptr;
}

borax::datamodel::ItemLibraryAccessor KelDbProxy::GetItemLibraryAccessor() const
{
    return m_workspace ? m_workspace->Accessor() : borax::datamodel::ItemLibraryAccessor();
}

void KelDbProxy::Attach(Workspace& workspace)
{
    Detach();
    m_workspace = &workspace;
    if (!m_wasConnected) {
        m_wasConnected = true;
        m_initialConnection();
    }
    m_connected();
}

void KelDbProxy::Detach()
{
    if (!m_workspace)
        return;
    m_disconnected();
    m_workspace = nullptr;
}

}  // namespace hbrc::host
