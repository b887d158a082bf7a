#include "photoimport/photoregistrar.h"
PhotoRegistrar::PhotoRegistrar(QObject *parent) : QObject(parent)
{
}
void PhotoRegistrar::upImportPhotoInfo(const OrderInfo &, int, int, const orderqueries::Identity &)
{
}
void PhotoRegistrar::upImportOrderData(const OrderInfo &, const orderqueries::Identity &)
{
}
void PhotoRegistrar::cancel()
{
}
