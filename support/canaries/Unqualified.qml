// Wrong on purpose: qmllint must object to the unknown name.
import QtQuick

Item {
    width: somethingThatIsNowhere
}
