// SPDX-License-Identifier: MIT
#pragma once

#include "IBlockingCamera.h"
#include "camera/CameraControlSet.h"
#include "camera/NamedControl.h"
#include "control/ExtensionUnit.h"
#include "device/Device.h"
#include "format/ImageFormatManager.h"
#include "input/InputMethodNone.h"
#include "system/ModuleExport.h"
#include "system/VideoNode.h"

#include <memory>

namespace ImageAcquisition
{

/// A camera behind a V4L2 node. Decides the order of start-up and the way frames travel; formats
/// and capture are handed on to those who know them.
class IMAGEACQUISITION_MODULE_EXPORT Camera : public virtual IBlockingCamera
{
public:
    /// Copies the record; opens nothing.
    explicit Camera(IDevice const* device);
    Camera(Camera const&) = delete;
    Camera& operator=(Camera const&) = delete;
    /// Closes the node. A capture must have been stopped and cleaned up before.
    ~Camera() override;

    int controlNumber() const override { return m_controls.size(); }
    IDevice const* device() const override { return &m_device; }
    ICameraControl* control(int position) const override;
    ICameraControl* control(char const* name) const override { return m_controls.named(name); }

    ICameraControl* autoContrastBrightnessControl() const override;
    ICameraControl* autoExposureControl() const override;
    ICameraControl* autoFocusControl() const override;
    ICameraControl* autoHueControl() const override;
    ICameraControl* autoSaturationControl() const override;
    ICameraControl* autoSharpnessControl() const override;
    ICameraControl* autoWhiteBalanceControl() const override;
    ICameraControl* brightnessControl() const override;
    ICameraControl* cameraErrorControl() const override;
    ICameraControl* exposureAbsoluteControl() const override;
    ICameraControl* gainControl() const override;
    ICameraControl* focusControl() const override;
    ICameraControl* keepAliveControl() const override;
    ICameraControl* lightIntensityControl() const override;
    ICameraControl* lightModeControl() const override;
    ICameraControl* triggerAutoControl() const override;
    ICameraControl* focusWindowX1Control() const override;
    ICameraControl* focusWindowX2Control() const override;
    ICameraControl* focusWindowY1Control() const override;
    ICameraControl* focusWindowY2Control() const override;
    ICameraControl* lockAutoControlsControl() const override;
    ICameraControl* windowSelectedControl() const override;
    ICameraControl* focusMinControl() const override;
    ICameraControl* focusMaxControl() const override;
    ICameraControl* focusStepControl() const override;
    ICameraControl* focusSensitivityControl() const override;
    ICameraControl* focusStrategyControl() const override;
    ICameraControl* exposureSensitivityControl() const override;
    ICameraControl* whiteBalanceTempControl() const override;
    ICameraControl* sharpnessControl() const override;
    ICameraControl* saturationControl() const override;
    ICameraControl* contrastControl() const override;
    ICameraControl* hueControl() const override;
    ICameraControl* gammaControl() const override;
    ICameraControl* autoGammaControl() const override;
    ICameraControl* invalidControl() const override { return m_controls.invalid(); }

    int formatNumber() const override;
    IImageFormat const* format(int position) const override;
    IImageFormat const* currentImageFormat() const override;
    IFrameSize const* currentFrameSize() const override;
    IFramePeriod const* currentFrameInterval() const override;
    bool softwareReset() override;
    bool setCurrentImageFormat(int format, int frameSize, int framePeriod) override;
    bool setCurrentImageFormat(char const* formatName, int width, int height, int numerator,
                               int denominator) override;

    int setup(int bufferCount) override;
    int startCapture() override { return m_transfer->startCapture(); }
    IFrame* acquireFrame() override { return m_transfer->acquireFrame(); }
    int releaseFrame(IFrame* frame) override { return m_transfer->releaseFrame(frame); }
    int stopCapture() override { return m_transfer->stopCapture(); }
    int cleanup() override { return m_transfer->cleanup(); }

    /// Opens the node and finds controls, formats and a way to transfer frames. True also when the
    /// node cannot be opened: the camera is then empty, its capture calls fail, and errno tells
    /// why.
    virtual bool init();

    /// The descriptor of the open node, or -1.
    int fileDescriptor() const { return m_node.descriptor(); }

    /// The node, for whoever works with it for as long as the camera lives.
    operator NodeReference() const { return m_node; }

    bool supportsMemoryMapping() const;
    bool supportsUserPointers() const;

    /// The way the device allows that costs least; null when it allows none.
    std::unique_ptr<InputMethod> createBestInputMethod() const;

    /// The way that init() chose, or null.
    InputMethod const* inputMethod() const { return m_inputMethod.get(); }

    /// The first control of this id, or the invalid control.
    ICameraControl* controlById(unsigned int id) const { return m_controls.withId(id); }

    /// Whether @p a comes before @p b: by name, byte by byte.
    static bool compareControls(std::unique_ptr<ICameraControl> const& a,
                                std::unique_ptr<ICameraControl> const& b)
    {
        return CameraControlSet::inOrder(a, b);
    }

protected:
    /// Fills the control set.
    virtual bool buildMainControlSet();

    /// Makes the extension unit of one of the vendor's cameras, which installs its controls in the
    /// driver; the caller owns it. Null for cameras that do without.
    virtual ExtensionUnit* createExtensionUnit() const;

    /// Adds a control at the end of the set.
    void appendControl(std::unique_ptr<ICameraControl> control)
    {
        m_controls.append(std::move(control));
    }

    /// What the function of that name hands out; the invalid control when the camera has none.
    virtual ICameraControl* namedControl(NamedControl which) const;

private:
    VideoNode m_node;
    CameraControlSet m_controls;
    Device m_device;
    InputMethodNone m_noInputMethod;
    std::unique_ptr<InputMethod> m_inputMethod;
    InputMethod* m_transfer = &m_noInputMethod;
    std::unique_ptr<ExtensionUnit> m_extensionUnit;
    ImageFormatManager m_formatManager;
};

} // namespace ImageAcquisition
